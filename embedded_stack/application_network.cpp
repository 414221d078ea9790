// The part of the application between the tables and the network.
#include <algorithm>
#include <exception>
#include <utility>

#include "embedded_stack/application_impl.h"

namespace vsomeip_v3::embedded {

namespace {

using Clock = std::chrono::steady_clock;

std::string NameOf(const Endpoint& endpoint) {
  return AddressText(endpoint.address) + ":" + std::to_string(endpoint.port);
}

}  // namespace

void ApplicationImpl::OnReadable() {
  const Lock lock(mutex_);
  if (state_ != State::kRunning) return;
  sockets_.Receive();
  dispatcher_->WatchAgain(sockets_.Descriptor());
}

std::size_t ApplicationImpl::OnDatagram(Sockets::Channel channel, std::size_t socket, const Endpoint& from,
                                        ByteView datagram) noexcept {
  try {
    if (channel == Sockets::Channel::kData) return OnData(socket, from, datagram);
    OnDiscovery(channel == Sockets::Channel::kDiscoveryMulticast, from, datagram);
  } catch (const std::exception&) {
    drops_.Count(Drop::kNoMemory, "any peer", Clock::now());
  }
  return 1;
}

void ApplicationImpl::OnDiscovery(bool multicast, const Endpoint& from, ByteView datagram) {
  const TimePoint now = Clock::now();
  if (multicast && from.address == sockets_.Address()) return;  // our own
  if (!IsInNetwork(from.address)) return drops_.Count(Drop::kForeignAddress, NameOf(from), now);
  const auto message = DecodeDiscovery(datagram);
  if (!message || from.port != discovery_port_) return drops_.Count(Drop::kBadDiscovery, NameOf(from), now);

  DiscoveryOutput out;
  if (peers_->Heard(from.address, multicast, {message->session, message->reboot})) {
    offers_->OnPeerRestarted(from.address, now);
    requests_->OnPeerRestarted(from.address, now, out);
  }
  for (const DiscoveryEntry& entry : message->entries) OnDiscoveryEntry(entry, from.address, multicast, out);
  for (const Drop drop : out.drops) drops_.Count(drop, NameOf(from), now);
  Apply(out);
  Wake();
}

// A node of the loopback range stays within it, so nothing leaves the machine.
bool ApplicationImpl::IsInNetwork(std::uint32_t address) const {
  const std::uint32_t host = address & ~netmask_;
  const bool is_one_node = ~netmask_ <= 1 || (host != 0 && host != ~netmask_);  // not all of them
  return is_one_node && ((address ^ sockets_.Address()) & netmask_) == 0;
}

void ApplicationImpl::OnDiscoveryEntry(DiscoveryEntry entry, std::uint32_t from, bool multicast, DiscoveryOutput& out) {
  const TimePoint now = Clock::now();
  const bool is_own = from == sockets_.Address();
  // What concerns two nodes goes between them, and we need not tell ourselves what we offer or look for.
  if (entry.IsEventgroupEntry() ? multicast : is_own) return out.drops.push_back(Drop::kBadDiscovery);
  if (entry.udp && (!IsInNetwork(entry.udp->address) || (entry.udp->address == sockets_.Address() && !is_own))) {
    entry.bad_options = true;
    out.drops.push_back(Drop::kForeignAddress);
  }
  switch (entry.type) {
    case EntryType::kFind:
      return offers_->OnFind(entry, from, now, out);
    case EntryType::kOffer:
      WarnOfRival(entry, from);
      return requests_->OnOffer(entry, from, multicast, now, out);
    case EntryType::kSubscribe:
      return offers_->OnSubscribe(entry, from, now, out);
    case EntryType::kAcknowledge:
      return requests_->OnAcknowledge(entry, from, out);
  }
}

// Once per offer: both nodes hear each other, so the one that clients do not use is told as well.
void ApplicationImpl::WarnOfRival(const DiscoveryEntry& offer, std::uint32_t from) {
  const ServiceInstance key{offer.service, offer.instance};
  const Offers::Offer* const own = offers_->Find(key);
  const bool is_usable = offer.ttl != 0 && offer.udp && !offer.bad_options && offer.udp->IsUnicast();
  if (own == nullptr || !is_usable || own->major != offer.major || !offers_->MeetsRival(key)) return;
  offers_->AnnounceAgain(key, Clock::now());  // so that the other one hears of this at once
  log_->Warning(Hex(offer.service), ".", Hex(offer.instance), " is offered by ", AddressText(from),
                " as well as by this process. Each client uses one of the two: end one, or offer another instance");
}

// A datagram may hold several messages. However many of them are wrong, one error answers them: it costs no more to
// send them than to refuse them.
std::size_t ApplicationImpl::OnData(std::size_t socket, const Endpoint& from, ByteView datagram) {
  std::size_t count = 0;
  may_send_error_ = true;
  do {
    ++count;
    const auto header = DecodeHeader(datagram);
    const std::size_t rest = datagram.Sub(kHeaderSize).size();
    if (!header || header->length < kLengthBase || header->length - kLengthBase > rest) {
      drops_.Count(Drop::kMalformed, NameOf(from), Clock::now());
      const bool answer = header && header->length != 0 && header->Type() == message_type_e::MT_REQUEST;
      if (answer) SendError({socket, from}, *header, return_code_e::E_MALFORMED_MESSAGE);
      break;
    }
    const std::size_t payload_size = header->length - kLengthBase;
    OnMessage(socket, from, *header, datagram.Sub(kHeaderSize, payload_size));
    datagram = datagram.Sub(kHeaderSize + payload_size);
  } while (datagram.size() > 0);
  return count;
}

void ApplicationImpl::OnMessage(std::size_t socket, const Endpoint& from, const MessageHeader& header,
                                ByteView payload) {
  const Origin origin{socket, from};
  const instance_t* instance = Admit(origin, header);
  if (instance == nullptr) return;
  if (header.IsSegment()) return OnSegment(origin, header, *instance, payload);
  Deliver(origin, header, *instance, {payload.begin(), payload.end()});
}

// The instance that the message belongs to. Null if it was dropped and, where that is due, answered. Segments are
// checked like whole messages, so that nobody fills the memory with messages that would be dropped in the end.
const instance_t* ApplicationImpl::Admit(const Origin& origin, const MessageHeader& header) {
  if (IsRequest(header.Type())) return AdmitRequest(origin, header);
  if (!IsResponse(header.Type()) && !IsNotification(header.Type())) {
    drops_.Count(Drop::kMalformed, NameOf(origin.peer), Clock::now());
    return nullptr;
  }
  if (header.protocol_version != kProtocolVersion) {
    drops_.Count(Drop::kWrongVersion, NameOf(origin.peer), Clock::now());
    return nullptr;
  }
  const instance_t* instance = requests_->FindInstance(header.service, origin.peer);
  const bool is_expected =
      instance != nullptr &&
      (!IsNotification(header.Type()) || used_events_.IsSubscribed({header.service, *instance}, header.method));
  if (is_expected) return instance;
  drops_.Count(Drop::kNobodyAsked, NameOf(origin.peer), Clock::now());
  return nullptr;
}

const instance_t* ApplicationImpl::AdmitRequest(const Origin& origin, const MessageHeader& header) {
  const instance_t* instance = offers_->FindInstance(header.service, origin.socket);
  return_code_e code = return_code_e::E_OK;
  if (header.protocol_version != kProtocolVersion) {
    code = return_code_e::E_WRONG_PROTOCOL_VERSION;
  } else if (instance == nullptr) {
    code = return_code_e::E_UNKNOWN_SERVICE;
  } else if (offers_->Find({header.service, *instance})->major != header.interface_version) {
    code = return_code_e::E_WRONG_INTERFACE_VERSION;
  } else {
    return instance;
  }
  const bool is_unknown = code == return_code_e::E_UNKNOWN_SERVICE;
  drops_.Count(is_unknown ? Drop::kUnknownService : Drop::kWrongVersion, NameOf(origin.peer), Clock::now());
  if (header.Type() == message_type_e::MT_REQUEST) SendError(origin, header, code);
  return nullptr;
}

void ApplicationImpl::OnSegment(const Origin& origin, const MessageHeader& header, instance_t instance,
                                ByteView bytes) {
  const TimePoint now = Clock::now();
  const auto segment = DecodeSegment(bytes);
  if (!segment) return drops_.Count(Drop::kBadSegment, NameOf(origin.peer), now);
  const bool was_empty = reassembler_.Empty();
  Reassembler::Result result = reassembler_.Add(origin.peer, header, *segment, now);
  switch (result.outcome) {
    case Reassembler::Outcome::kIncomplete:
      if (was_empty) Wake();  // for the time limit
      return;
    case Reassembler::Outcome::kBadSegment:
      return drops_.Count(Drop::kBadSegment, NameOf(origin.peer), now);
    case Reassembler::Outcome::kOverLimit:
      return drops_.Count(Drop::kReassemblyLimit, NameOf(origin.peer), now);
    case Reassembler::Outcome::kComplete:
      break;
  }
  MessageHeader whole = header;
  whole.type = static_cast<std::uint8_t>(header.Type());
  Deliver(origin, whole, instance, std::move(result.payload));
}

void ApplicationImpl::Deliver(const Origin& origin, const MessageHeader& header, instance_t instance,
                              std::vector<std::uint8_t> payload) {
  const ServiceInstance key{header.service, instance};
  auto message = std::make_shared<MessageImpl>(header, instance, std::move(payload));
  if (IsRequest(header.Type())) {
    message->set_origin(origin);
    if (!handlers_.FindMessage(header.service, instance, header.method)) {
      return drops_.Count(Drop::kUnknownMethod, NameOf(origin.peer) + " calls " + Hex(header.method), Clock::now());
    }
  } else if (IsNotification(header.Type())) {
    used_events_.Keep(key, header.method, message);
  }
  PushMessage(std::move(message), IsRequest(header.Type()) ? origin.peer.address : 0);
}

void ApplicationImpl::SendError(const Origin& origin, const MessageHeader& request, return_code_e code) {
  if (!std::exchange(may_send_error_, false)) return;
  MessageHeader error = request;
  error.protocol_version = kProtocolVersion;
  error.type = static_cast<std::uint8_t>(message_type_e::MT_ERROR);
  error.return_code = static_cast<std::uint8_t>(code);
  Transmit({origin.socket, origin.peer}, error, {}, [] { return std::make_shared<const std::vector<std::uint8_t>>(); });
}

bool ApplicationImpl::Transmit(const SendQueue::Target& target, const MessageHeader& header, ByteView payload,
                               const std::function<SharedBytes()>& keep) {
  const TimePoint now = Clock::now();
  std::size_t sent = 0;
  for (bool more = queue_->Admit(target, payload.size(), now); more;) {
    Datagrams datagrams(header, payload, sent);
    const std::size_t taken = sockets_.Send(target.first, target.second, datagrams);
    sent += datagrams.PayloadSize(taken);
    more = taken == datagrams.Count();
    if (more && sent == payload.size()) return true;
  }
  if (!queue_->Push(target, header, keep(), sent)) {
    drops_.Count(Drop::kSendQueueFull, Hex(header.service) + " to " + NameOf(target.second), now);
    return false;
  }
  const TimePoint planned = next_flush_;
  Flush(now);
  if (next_flush_ < planned) Wake();
  return true;
}

void ApplicationImpl::Flush(TimePoint now) {
  next_flush_ = queue_->Flush(now, [this](const SendQueue::Target& target, Datagrams& datagrams) {
    return sockets_.Send(target.first, target.second, datagrams);
  });
}

void ApplicationImpl::Apply(const DiscoveryOutput& out) {
  SendEntries(out.entries);
  for (const auto& change : out.availability) TellAvailability(change);
  for (const auto& status : out.subscriptions) TellStatus(status);
  for (const auto& subscriber : out.subscribers) SendInitialValues(subscriber);
  for (const auto& released : out.released) {
    used_events_.Unsubscribe(released);
    handlers_.ForgetAvailability(released);
  }
}

void ApplicationImpl::SendEntries(const std::vector<DiscoveryOutput::Outgoing>& entries) {
  std::map<std::optional<std::uint32_t>, std::vector<DiscoveryEntry>> by_target;
  for (const auto& outgoing : entries) by_target[outgoing.to].push_back(outgoing.entry);
  for (const auto& [to, all] : by_target) {
    for (std::size_t at = 0; at < all.size(); at += kMaxEntriesPerMessage) {
      const auto begin = all.begin() + static_cast<std::ptrdiff_t>(at);
      const auto count = static_cast<std::ptrdiff_t>(std::min(kMaxEntriesPerMessage, all.size() - at));
      const PeerTable::Session session = peers_->Next(to);
      const auto datagram = EncodeDiscovery({session.id, session.reboot, {begin, begin + count}});
      if (to) {
        sockets_.SendDiscovery(*to, datagram);
      } else {
        sockets_.SendToGroup(datagram);
      }
    }
  }
}

void ApplicationImpl::Wake() {
  is_woken_ = true;
  woken_.notify_one();
}

TimePoint ApplicationImpl::Tick() {
  const TimePoint now = Clock::now();
  DiscoveryOutput out;
  offers_->Poll(now, out);
  requests_->Poll(now, out);
  Apply(out);
  if (is_availability_untold_) TellAvailabilityAgain();
  for (const auto& due : offered_events_.Poll(now)) {
    const OfferedEvents::Event* event = offered_events_.Find(due.key, due.id);
    SendNotification(due.key, due.id, offers_->Subscribers(due.key, event->eventgroups, now));
  }
  const std::size_t expired = reassembler_.Expire(now);
  drops_.Count(Drop::kReassemblyLimit, "time", now, expired);
  if (now >= next_flush_) Flush(now);
  TimePoint next = std::min({offers_->NextDeadline(), requests_->NextDeadline(), offered_events_.NextDeadline()});
  next = std::min(next, next_flush_);
  if (is_availability_untold_) next = std::min(next, now + Dispatcher::kPatience);
  if (!reassembler_.Empty()) next = std::min(next, now + Reassembler::kIdleLimit / 2);
  return std::min(next, now + std::chrono::hours(1));
}

}  // namespace vsomeip_v3::embedded
