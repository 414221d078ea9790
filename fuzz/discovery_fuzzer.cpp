// Discovery messages from four peers over some seconds: each is read, written and read again, and then told to the
// tables of a node that offers one service and uses another.
#include <algorithm>
#include <chrono>
#include <map>
#include <vector>

#include "embedded_stack/discovery/offers.h"
#include "embedded_stack/discovery/peer_table.h"
#include "embedded_stack/discovery/requests.h"
#include "embedded_stack/wire/discovery_message.h"
#include "fuzz/check.h"
#include "fuzz/packets.h"

namespace {

using namespace vsomeip_v3::embedded;
using vsomeip_v3::eventgroup_t;

constexpr ServiceInstance kOffered{0x4711, 1};
constexpr ServiceInstance kUsed{0x4712, 1};
constexpr eventgroup_t kEventgroup = 0x21;
constexpr std::uint8_t kMajor = 3;
constexpr Endpoint kOwn{0x7F4D0001, 30509};
constexpr std::size_t kMostEntriesPerEntry = 2;  // an offer makes us subscribe to two eventgroups

class Tables {
 public:
  Tables() {
    offers_.Add(kOffered, {kMajor, 0, kOwn, 0}, now_);
    requests_.SetLocalEndpoint(kOwn);
    requests_.Request(kUsed, kMajor, 0, now_);
    DiscoveryOutput out;
    requests_.Subscribe(kUsed, kEventgroup, kMajor, now_, out);
    requests_.Subscribe(kUsed, kEventgroup + 1, kMajor, now_, out);
    Poll();
  }

  // Bits 0 and 1 of the control byte are the peer, bit 2 says whether it spoke to the group, the others how many tenths
  // of a second have passed.
  void Handle(const fuzz::Packet& packet) {
    now_ += std::chrono::milliseconds(100) * (packet.control >> 3U);
    Poll();
    const auto message = DecodeDiscovery({packet.data, packet.size});
    if (!message) return;
    CheckCodec(*message);
    const std::uint32_t peer = 0x7F000001 + (packet.control & 0x3U);
    DiscoveryOutput out;
    const bool multicast = (packet.control & 0x4U) != 0;
    if (peers_.Heard(peer, multicast, {message->session, message->reboot})) {
      offers_.OnPeerRestarted(peer, now_);
      requests_.OnPeerRestarted(peer, now_, out);
    }
    for (const DiscoveryEntry& entry : message->entries) Handle(entry, peer, multicast, out);
    fuzz::Require(out.entries.size() <= message->entries.size() * kMostEntriesPerEntry,
                  "a message causes no more entries than its own allow");
    Check(out);
  }

 private:
  void Handle(const DiscoveryEntry& entry, std::uint32_t peer, bool multicast, DiscoveryOutput& out) {
    switch (entry.type) {
      case EntryType::kFind:
        return offers_.OnFind(entry, peer, now_, out);
      case EntryType::kOffer:
        return requests_.OnOffer(entry, peer, multicast, now_, out);
      case EntryType::kSubscribe:
        return offers_.OnSubscribe(entry, peer, now_, out);
      case EntryType::kAcknowledge:
        return requests_.OnAcknowledge(entry, peer, out);
    }
  }

  void Poll() {
    DiscoveryOutput out;
    offers_.Poll(now_, out);
    requests_.Poll(now_, out);
    Check(out);
    fuzz::Require(std::min(offers_.NextDeadline(), requests_.NextDeadline()) > now_, "what was due is done");
  }

  static void CheckCodec(const DiscoveryMessage& message) {
    fuzz::Require(message.entries.size() <= kMaxReceivedEntries, "a message has no more entries than are taken");
    const auto written = EncodeDiscovery(message);
    const auto again = DecodeDiscovery(written);
    fuzz::Require(again && EncodeDiscovery(*again) == written, "a message that was read and written reads the same");
  }

  void Check(const DiscoveryOutput& out) {
    for (const auto& change : out.availability) {
      const ServiceInstance key{change.service, change.instance};
      fuzz::Require(key == kUsed, "only what was requested becomes available");
      fuzz::Require(available_ != change.available, "availability changes each time that it is told");
      available_ = change.available;
    }
    fuzz::Require(available_ == (requests_.Find(kUsed) != nullptr), "availability is told");
    fuzz::Require(offers_.Subscribers(kOffered, {kEventgroup}, now_).size() <= Offers::kMaxSubscriptions,
                  "subscribers are limited");
    for (std::size_t at = 0; at < out.entries.size(); at += kMaxEntriesPerMessage) {
      DiscoveryMessage message;
      message.session = 1;
      for (std::size_t i = at; i < std::min(out.entries.size(), at + kMaxEntriesPerMessage); ++i) {
        message.entries.push_back(out.entries[i].entry);
      }
      const auto sent = DecodeDiscovery(EncodeDiscovery(message));
      fuzz::Require(sent && sent->entries.size() == message.entries.size(), "a peer can read what we send");
    }
  }

  TimePoint now_{std::chrono::hours(1)};
  Offers offers_{DiscoverySettings{}, [](auto, auto, eventgroup_t eventgroup) { return eventgroup == kEventgroup; }};
  Requests requests_{DiscoverySettings{}};
  PeerTable peers_{[this](std::uint32_t peer) { return offers_.HasPeer(peer) || requests_.HasPeer(peer); }};
  bool available_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMaxPackets = 16;
  Tables tables;
  for (const fuzz::Packet& packet : fuzz::SplitPackets(data, size, kMaxPackets)) tables.Handle(packet);
  return 0;
}
