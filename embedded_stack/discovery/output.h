#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "embedded_stack/log.h"
#include "embedded_stack/wire/discovery_message.h"

namespace vsomeip_v3::embedded {

using TimePoint = std::chrono::steady_clock::time_point;
using ServiceInstance = std::pair<service_t, instance_t>;

inline constexpr TimePoint kNever = TimePoint::max();

// The end of a time to live that begins at `now`. Whatever a peer says it lasts, it must repeat itself now and then.
inline constexpr ttl_t kMaxTtl = 300;
inline TimePoint ExpiryOf(ttl_t ttl, TimePoint now) { return now + std::chrono::seconds(std::min(ttl, kMaxTtl)); }

// What discovery wants done, in this order: entries sent, then the changes told. Discovery itself has no sockets, no
// clock and no handlers, so that it can be tested without any.
struct DiscoveryOutput {
  struct Outgoing {
    std::optional<std::uint32_t> to;  // a peer's address; none: the group
    DiscoveryEntry entry;
  };
  struct Availability {
    service_t service;
    instance_t instance;
    major_version_t major;
    minor_version_t minor;
    bool available;
  };
  struct SubscriptionStatus {
    service_t service;
    instance_t instance;
    eventgroup_t eventgroup;
    bool accepted;
  };
  struct NewSubscriber {  // wants the present values of the eventgroup's fields
    service_t service;
    instance_t instance;
    eventgroup_t eventgroup;
    Endpoint subscriber;
  };

  std::vector<Outgoing> entries;
  std::vector<Availability> availability;
  std::vector<SubscriptionStatus> subscriptions;
  std::vector<NewSubscriber> subscribers;
  std::vector<ServiceInstance> released;  // no longer used here; nobody is told
  std::vector<Drop> drops;
};

}  // namespace vsomeip_v3::embedded
