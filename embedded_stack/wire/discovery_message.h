#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "embedded_stack/wire/byte_view.h"
#include "embedded_stack/wire/message_header.h"

namespace vsomeip_v3::embedded {

inline constexpr service_t kDiscoveryService = 0xFFFF;
inline constexpr method_t kDiscoveryMethod = 0x8100;

// An IPv4 address and a port, in host order.
struct Endpoint {
  std::uint32_t address = 0;
  port_t port = 0;

  // Whether one node can be reached there: not a group, and not nowhere.
  bool IsUnicast() const { return port != 0 && address != 0 && address >> 28U < 0xE; }

  // In 127.77.0.0/16, where nodes of this stack take addresses, and nobody else.
  bool IsOfThisStack() const { return address >> 16U == 0x7F4D; }

  bool operator==(const Endpoint& other) const { return address == other.address && port == other.port; }
  bool operator!=(const Endpoint& other) const { return !(*this == other); }
  bool operator<(const Endpoint& other) const {
    return address != other.address ? address < other.address : port < other.port;
  }
};

enum class EntryType : std::uint8_t { kFind = 0x00, kOffer = 0x01, kSubscribe = 0x06, kAcknowledge = 0x07 };

// One entry of a discovery message. A time to live of 0 turns an offer into a stop offer, a subscribe into a stop
// subscribe and an acknowledge into a negative one.
struct DiscoveryEntry {
  EntryType type = EntryType::kFind;
  service_t service = 0;
  instance_t instance = 0;
  major_version_t major = 0;
  ttl_t ttl = 0;
  minor_version_t minor = 0;    // find and offer
  std::uint8_t counter = 0;     // subscribe and acknowledge: tells apart parallel subscriptions of one subscriber
  eventgroup_t eventgroup = 0;  // subscribe and acknowledge

  std::optional<Endpoint> udp;  // the first IPv4 UDP endpoint option that the entry refers to
  bool bad_options = false;     // decoded only: refers to options that are not there, or that are malformed

  bool IsEventgroupEntry() const { return type == EntryType::kSubscribe || type == EntryType::kAcknowledge; }
};

struct DiscoveryMessage {
  session_t session = 0;
  bool reboot = true;
  std::vector<DiscoveryEntry> entries;
};

// `datagram` starts with the SOME/IP header. Nothing if a header field or the length of one of the two arrays is not
// what discovery prescribes. Entries of unknown type are left out.
std::optional<DiscoveryMessage> DecodeDiscovery(ByteView datagram);

// The whole datagram, header included. Equal options are written once. The caller keeps entries below
// kMaxEntriesPerMessage, which fits one datagram even if each has an option of its own.
std::vector<std::uint8_t> EncodeDiscovery(const DiscoveryMessage& message);
inline constexpr std::size_t kMaxEntriesPerMessage = 48;
// More than fit a datagram of 1400 bytes are refused, so that one message cannot cause thousands of answers.
inline constexpr std::size_t kMaxReceivedEntries = 88;

}  // namespace vsomeip_v3::embedded
