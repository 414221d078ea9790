#include "embedded_stack/application_impl.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace vsomeip_v3::embedded {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kHandlerDeadline{700};  // to return after stop(); leaves time for the rest
constexpr std::chrono::milliseconds kStartDeadline{200};    // for start() to return
constexpr std::chrono::milliseconds kRetryTick{100};        // after one without memory

std::string NameOf(service_t service, instance_t instance) { return Hex(service) + "." + Hex(instance); }

std::string ConfigurationFile(const std::string& given, const std::string& name) {
  if (!given.empty()) return given;
  for (const std::string& variable : {"VSOMEIP_CONFIGURATION_" + name, std::string("VSOMEIP_CONFIGURATION")}) {
    const char* const file = std::getenv(variable.c_str());
    if (file != nullptr && *file != '\0') return file;
  }
  return {};
}

}  // namespace

ApplicationImpl::ApplicationImpl(std::string name, std::string configuration_file)
    : name_(std::move(name)),
      configuration_file_(std::move(configuration_file)),
      log_(std::make_shared<Log>(name_)),
      dispatcher_(std::make_shared<Dispatcher>(log_)),
      drops_(*log_),
      sockets_([this](Sockets::Channel channel, std::size_t socket, const Endpoint& from, ByteView datagram) {
        return OnDatagram(channel, socket, from, datagram);
      }) {}

// start() keeps the application alive, so nothing runs any more, except for handlers that stop() left behind.
ApplicationImpl::~ApplicationImpl() = default;

client_t ApplicationImpl::get_client() const {
  const Lock lock(mutex_);
  return client_;
}

bool ApplicationImpl::init() {
  const Lock lock(mutex_);
  if (state_ != State::kNew) return state_ != State::kStopping;
  try {
    const std::string file = ConfigurationFile(configuration_file_, name_);
    const Configuration configuration = file.empty() ? Configuration() : LoadConfiguration(file);
    log_->SetLevel(configuration.log_level);
    for (const std::string& warning : configuration.warnings) log_->Warning(warning);
    sockets_.Open(configuration);
    if (!sockets_.IsDiscoveryExclusive()) {
      log_->Warning("another program is at the discovery port of all addresses: it may take what is sent to this one");
    }
    dispatcher_->Open(sockets_.Descriptor());
    CreateTables(configuration);
  } catch (const std::exception& error) {
    sockets_.Close();
    log_->Error("cannot initialize: ", error.what());
    return false;
  }
  stop_requested_ = false;
  state_ = State::kReady;
  return true;
}

void ApplicationImpl::CreateTables(const Configuration& configuration) {
  const auto configured_id = configuration.client_ids.find(name_);
  client_ = configured_id != configuration.client_ids.end() ? configured_id->second
                                                            : static_cast<client_t>(sockets_.Address() & 0xFFFFU);
  if (client_ == ILLEGAL_CLIENT) client_ = 1;
  configured_ports_ = configuration.ports;
  discovery_port_ = configuration.discovery.port;
  offers_ = std::make_unique<Offers>(configuration.discovery, [this](service_t s, instance_t i, eventgroup_t group) {
    return offered_events_.HasEventgroup({s, i}, group);
  });
  requests_ = std::make_unique<Requests>(configuration.discovery);
  requests_->SetLocalEndpoint(sockets_.LocalEndpoint(0));
  peers_ = std::make_unique<PeerTable>(
      [this](std::uint32_t peer) { return offers_->HasPeer(peer) || requests_->HasPeer(peer); });
  netmask_ = sockets_.IsLoopback() ? 0xFF000000 : configuration.netmask;
  is_availability_untold_ = false;
  queue_ = std::make_unique<SendQueue>(sockets_.ReceiveBuffer());
  next_flush_ = kNever;
  reassembler_ = Reassembler();
}

void ApplicationImpl::start() {
  const auto self = shared_from_this();
  Lock lock(mutex_);
  if (state_ != State::kReady) {
    log_->Error("start() needs an application that is initialized and not started");
    return;
  }
  try {
    if (!stop_requested_) Serve(lock);
  } catch (const std::exception& error) {  // the system has no thread for us
    log_->Error("cannot start: ", error.what());
    dispatcher_ = std::make_shared<Dispatcher>(log_);
  }
  sockets_.Close();
  offers_.reset();
  requests_.reset();
  state_ = State::kNew;
  left_start_.notify_all();
}

void ApplicationImpl::Serve(Lock& lock) {
  state_ = State::kRunning;
  if (const auto handler = handlers_.State()) {
    Push([handler] {
      if (*handler->registered) handler->call(state_type_e::ST_REGISTERED);
    });
  }
  log_->Info("client ", Hex(client_), " at ", AddressText(sockets_.Address()));
  // A thread may be on its way into the application while stop() ends.
  dispatcher_->Start([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->OnReadable();
  });
  while (state_ == State::kRunning) {
    is_woken_ = false;
    TimePoint next = Clock::now() + kRetryTick;
    try {
      next = Tick();
    } catch (const std::exception& error) {  // no memory: discovery repeats itself
      log_->Error("the time's work was cut short: ", error.what());
    }
    woken_.wait_until(lock, next, [this] { return is_woken_ || state_ != State::kRunning; });
  }
}

void ApplicationImpl::stop() {
  const auto self = shared_from_this();  // start() returns first, and that may have been the last owner
  std::shared_ptr<Dispatcher> dispatcher;
  {
    const Lock lock(mutex_);
    if (state_ == State::kReady) stop_requested_ = true;
    if (state_ != State::kRunning) return;
    state_ = State::kStopping;
    DiscoveryOutput out;
    StopTables(out);
    SendEntries(out.entries);
    woken_.notify_one();
    dispatcher = std::exchange(dispatcher_, std::make_shared<Dispatcher>(log_));
  }
  dispatcher->Stop(kHandlerDeadline);
  Lock lock(mutex_);
  left_start_.wait_for(lock, kStartDeadline, [this] { return state_ != State::kStopping; });
}

void ApplicationImpl::StopTables(DiscoveryOutput& out) {
  requests_->UnsubscribeAll(out);
  for (const ServiceInstance& key : offers_->All()) offers_->Remove(key, out);
  offered_events_.Clear();
  used_events_.Clear();
  handlers_.ForgetAvailability();
}

void ApplicationImpl::offer_service(service_t service, instance_t instance, major_version_t major,
                                    minor_version_t minor) {
  const Lock lock(mutex_);
  if (state_ != State::kReady && state_ != State::kRunning) {
    log_->Error("offer_service() needs an initialized application");
    return;
  }
  const ServiceInstance key{service, instance};
  if (const Offers::Offer* known = offers_->Find(key)) {
    if (known->major != major || known->minor != minor) {
      log_->Error(NameOf(service, instance), " is offered in another version already");
    }
    return;
  }
  try {
    const std::size_t socket = ChooseSocket(key);
    const Endpoint endpoint = sockets_.LocalEndpoint(socket);
    const TimePoint now = Clock::now();
    offers_->Add(key, {major, minor, endpoint, socket}, now);
    DiscoveryOutput out;
    requests_->AddLocal(key, {major, minor, endpoint, sockets_.Address(), true, kNever, now, {}}, now, out);
    Apply(out);
  } catch (const std::exception& error) {
    log_->Error("cannot offer ", NameOf(service, instance), ": ", error.what());
  }
  Wake();
}

// A port tells the instances of one service apart, so each needs another.
std::size_t ApplicationImpl::ChooseSocket(const ServiceInstance& key) {
  const auto configured = configured_ports_.find(key);
  const port_t port = configured == configured_ports_.end() ? port_t{0} : configured->second;
  for (std::size_t socket = 0; socket < sockets_.DataSocketCount(); ++socket) {
    const bool port_fits = port == 0 || sockets_.LocalEndpoint(socket).port == port;
    if (port_fits && offers_->FindInstance(key.first, socket) == nullptr) return socket;
  }
  return sockets_.AddDataSocket(port);
}

void ApplicationImpl::stop_offer_service(service_t service, instance_t instance, major_version_t /*major*/,
                                         minor_version_t /*minor*/) {
  const Lock lock(mutex_);
  if (!offers_) return;
  const ServiceInstance key{service, instance};
  DiscoveryOutput out;
  if (!offers_->Remove(key, out)) return;
  offered_events_.ForgetValues(key);
  requests_->RemoveLocal(key, Clock::now(), out);
  Apply(out);
}

void ApplicationImpl::request_service(service_t service, instance_t instance, major_version_t major,
                                      minor_version_t minor) {
  const Lock lock(mutex_);
  if (state_ != State::kReady && state_ != State::kRunning) {
    log_->Error("request_service() needs an initialized application");
    return;
  }
  requests_->Request({service, instance}, major, minor, Clock::now());
  Wake();
}

void ApplicationImpl::release_service(service_t service, instance_t instance) {
  const Lock lock(mutex_);
  if (!requests_) return;
  DiscoveryOutput out;
  requests_->Release({service, instance}, out);
  used_events_.Unsubscribe({service, instance});
  Apply(out);
}

void ApplicationImpl::request_event(service_t service, instance_t instance, event_t event,
                                    const std::set<eventgroup_t>& eventgroups, event_type_e type,
                                    reliability_type_e /*reliability*/) {
  const Lock lock(mutex_);
  used_events_.Request({service, instance}, event, eventgroups, type);
}

void ApplicationImpl::release_event(service_t service, instance_t instance, event_t event) {
  const Lock lock(mutex_);
  used_events_.Release({service, instance}, event);
}

void ApplicationImpl::subscribe(service_t service, instance_t instance, eventgroup_t eventgroup, major_version_t major,
                                event_t event) {
  const Lock lock(mutex_);
  if (state_ != State::kReady && state_ != State::kRunning) {
    log_->Error("subscribe() needs an initialized application");
    return;
  }
  const ServiceInstance key{service, instance};
  const TimePoint now = Clock::now();
  DiscoveryOutput out;
  const UsedEvents::Added added = used_events_.Subscribe(key, eventgroup, event);
  requests_->Subscribe(key, eventgroup, major, now, out);
  if (added == UsedEvents::Added::kNewEvent) requests_->Renew(key, eventgroup, now, out);
  Apply(out);
  if (added == UsedEvents::Added::kAccepted) {
    PushStatus(key, eventgroup, event, true);
    for (const auto& notification : used_events_.Kept(key, eventgroup, event)) PushMessage(notification);
  }
  Wake();
}

void ApplicationImpl::unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup) {
  unsubscribe(service, instance, eventgroup, ANY_EVENT);
}

void ApplicationImpl::unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup, event_t event) {
  const Lock lock(mutex_);
  if (!requests_ || !used_events_.Unsubscribe({service, instance}, eventgroup, event)) return;
  DiscoveryOutput out;
  requests_->Unsubscribe({service, instance}, eventgroup, out);
  Apply(out);
}

bool ApplicationImpl::is_available(service_t service, instance_t instance, major_version_t major,
                                   minor_version_t minor) const {
  const Lock lock(mutex_);
  if (!requests_) return false;
  const Handlers::AvailabilityKey wanted{service, instance, major == DEFAULT_MAJOR ? ANY_MAJOR : major, minor};
  for (const auto& [key, found] : requests_->Available()) {
    if (Handlers::Concerns(wanted, {key.first, key.second, found.major, found.minor, true})) return true;
  }
  return false;
}

session_t ApplicationImpl::NextSession() {
  if (++session_ == 0) session_ = 1;
  return session_;
}

// Thrown, not logged: who sends a value that nobody will get is to know.
void ApplicationImpl::RequireTransferable(const payload& payload) {
  if (payload.get_length() > kMaxPayload) {
    throw std::length_error("A payload of " + std::to_string(payload.get_length()) + " bytes is above the limit of " +
                            std::to_string(kMaxPayload) + ": nothing is sent");
  }
}

void ApplicationImpl::send(std::shared_ptr<message> message) {
  auto* const own = dynamic_cast<MessageImpl*>(message.get());
  if (own == nullptr) {
    log_->Error("send() takes messages that the runtime made");
    return;
  }
  const Lock lock(mutex_);
  if (IsRequest(own->get_message_type())) {  // whatever becomes of it
    own->set_client(client_);
    own->set_session(NextSession());
  }
  RequireTransferable(*own->get_payload());
  if (state_ != State::kRunning) {
    log_->Warning("send() before start() or after stop(): message dropped");
  } else if (IsRequest(own->get_message_type())) {
    SendRequest(message);
  } else if (IsResponse(own->get_message_type())) {
    SendResponse(message);
  } else {
    log_->Error("send() takes requests and responses: message of ", Hex(own->get_service()), " dropped");
  }
}

void ApplicationImpl::SendRequest(const std::shared_ptr<message>& message) {
  const auto& request = static_cast<const MessageImpl&>(*message);
  const Requests::Instance* instance = requests_->Find({request.get_service(), request.get_instance()});
  if (instance == nullptr) {
    log_->Warning(NameOf(request.get_service(), request.get_instance()), " is not available: request to ",
                  Hex(request.get_method()), " dropped");
    return;
  }
  Transmit({0, instance->endpoint}, request.header(), request.bytes(), [&] { return Keep(message); });
}

void ApplicationImpl::SendResponse(const std::shared_ptr<message>& message) {
  const auto& response = static_cast<const MessageImpl&>(*message);
  if (!response.origin()) {
    log_->Error("a response needs create_response(): message of ", Hex(response.get_service()), " dropped");
    return;
  }
  const Origin& origin = *response.origin();
  if (Transmit({origin.socket, origin.peer}, response.header(), response.bytes(), [&] { return Keep(message); }))
    return;
  // For more answers like this one there is no room either, so none is made.
  const std::size_t dropped = dispatcher_->DropRequests(origin.peer.address, response.get_message());
  drops_.Count(Drop::kSendQueueFull, "requests of " + AddressText(origin.peer.address), Clock::now(), dropped);
}

}  // namespace vsomeip_v3::embedded
