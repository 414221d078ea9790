#pragma once

#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include "embedded_stack/configuration.h"
#include "embedded_stack/discovery/output.h"

namespace vsomeip_v3::embedded {

// The using half of discovery: finds what is requested here, knows what is available, and keeps the subscriptions
// alive over any number of the providers' restarts. Not synchronized.
class Requests {
 public:
  static constexpr std::size_t kMaxInstances = 1024;  // available ones; wildcards could match any number

  explicit Requests(const DiscoverySettings& settings) : settings_(settings) {}

  // An instance that is requested and offered.
  struct Instance {
    major_version_t major = 0;
    minor_version_t minor = 0;
    Endpoint endpoint;       // where requests go
    std::uint32_t peer = 0;  // whose offer it is: the address of the provider's discovery
    bool local = false;      // offered by this very application: the only way to lose it is RemoveLocal()
    TimePoint expiry = kNever;
    std::set<std::uint32_t> superseded;  // peers whose offer gave way to a newer one; ignored while that one lasts
  };

  // Wildcards are allowed in all arguments. Begins to search at the next Poll().
  void Request(const ServiceInstance& key, major_version_t major, minor_version_t minor, TimePoint now);
  void Release(const ServiceInstance& key, DiscoveryOutput& out);

  void AddLocal(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out);
  void RemoveLocal(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out);

  const Instance* Find(const ServiceInstance& key) const;
  // The instance of `service` whose provider sends from `endpoint`.
  const instance_t* FindInstance(service_t service, const Endpoint& endpoint) const;
  const std::map<ServiceInstance, Instance>& Available() const { return available_; }

  // Keeps the eventgroup subscribed whenever the instance is available in this major version.
  void Subscribe(const ServiceInstance& key, eventgroup_t eventgroup, major_version_t major, TimePoint now,
                 DiscoveryOutput& out);
  void Unsubscribe(const ServiceInstance& key, eventgroup_t eventgroup, DiscoveryOutput& out);
  // Subscribes anew, so that the provider sends the present values again.
  void Renew(const ServiceInstance& key, eventgroup_t eventgroup, TimePoint now, DiscoveryOutput& out);
  void UnsubscribeAll(DiscoveryOutput& out);

  void OnOffer(const DiscoveryEntry& entry, std::uint32_t from, TimePoint now, DiscoveryOutput& out);
  void OnAcknowledge(const DiscoveryEntry& entry, std::uint32_t from, DiscoveryOutput& out);
  void OnPeerRestarted(std::uint32_t peer, TimePoint now, DiscoveryOutput& out);

  void Poll(TimePoint now, DiscoveryOutput& out);
  TimePoint NextDeadline() const;

  // The endpoint that subscriptions name; to be set before the first one.
  void SetLocalEndpoint(const Endpoint& endpoint) { local_endpoint_ = endpoint; }

 private:
  enum class State { kIdle, kPending, kAccepted, kRejected };
  struct Wish {  // a requested service
    major_version_t major;
    minor_version_t minor;
    unsigned searched = 0;
    TimePoint next;
  };
  struct Subscription {
    major_version_t major;
    State state = State::kIdle;
    TimePoint refresh = kNever;
  };
  using SubscriptionKey = std::tuple<service_t, instance_t, eventgroup_t>;

  bool IsRequested(const ServiceInstance& key, major_version_t major, minor_version_t minor) const;
  bool IsSatisfied(const ServiceInstance& wish) const;
  void Appear(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out);
  void Vanish(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out);
  void SubscribeAll(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out);
  void SendSubscribe(const SubscriptionKey& key, Subscription& subscription, const Instance& instance, TimePoint now,
                     DiscoveryOutput& out);
  void SendStop(const SubscriptionKey& key, const Subscription& subscription, const Instance& instance,
                DiscoveryOutput& out) const;

  DiscoverySettings settings_;
  Endpoint local_endpoint_;
  std::map<ServiceInstance, Wish> wishes_;
  std::map<ServiceInstance, Instance> local_;  // offered here, requested or not
  std::map<ServiceInstance, Instance> available_;
  std::map<SubscriptionKey, Subscription> subscriptions_;
};

}  // namespace vsomeip_v3::embedded
