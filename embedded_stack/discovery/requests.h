#pragma once

#include <algorithm>
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
  // Available ones that only a wildcard asks for, in all and from one peer.
  static constexpr std::size_t kMaxInstances = 8192;
  static constexpr std::size_t kMaxInstancesOfPeer = 1024;
  static constexpr std::size_t kMaxRivals = 8;                   // that are remembered for each instance
  static constexpr std::chrono::milliseconds kStopMemory{1000};  // see OnOffer()

  explicit Requests(const DiscoverySettings& settings) : settings_(settings) {}

  // A peer whose offer gave way to a newer one.
  struct Rival {
    unsigned offers = 0;  // since the newer one was heard
    TimePoint heard;
  };
  // An instance that is requested and offered.
  struct Instance {
    major_version_t major = 0;
    minor_version_t minor = 0;
    Endpoint endpoint;       // where requests go
    std::uint32_t peer = 0;  // whose offer it is: the address of the provider's discovery
    bool local = false;      // offered by this very application: the only way to lose it is RemoveLocal()
    TimePoint expiry = kNever;
    TimePoint heard{};  // the last offer
    std::map<std::uint32_t, Rival> rivals;
  };

  // Wildcards are allowed in all arguments. Begins to search at the next Poll().
  void Request(const ServiceInstance& key, major_version_t major, minor_version_t minor, TimePoint now);
  void Release(const ServiceInstance& key, DiscoveryOutput& out);

  void AddLocal(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out);
  void RemoveLocal(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out);

  const Instance* Find(const ServiceInstance& key) const;
  // The instance of `service` whose provider sends from `endpoint`.
  const instance_t* FindInstance(service_t service, const Endpoint& endpoint) const;
  bool HasPeer(std::uint32_t peer) const { return instances_of_.count(peer) != 0; }
  const std::map<ServiceInstance, Instance>& Available() const { return available_; }

  // Keeps the eventgroup subscribed whenever the instance is available in this major version.
  void Subscribe(const ServiceInstance& key, eventgroup_t eventgroup, major_version_t major, TimePoint now,
                 DiscoveryOutput& out);
  void Unsubscribe(const ServiceInstance& key, eventgroup_t eventgroup, DiscoveryOutput& out);
  // Subscribes anew, so that the provider sends the present values again.
  void Renew(const ServiceInstance& key, eventgroup_t eventgroup, TimePoint now, DiscoveryOutput& out);
  void UnsubscribeAll(DiscoveryOutput& out);

  // A provider that goes says so to the group. An answer to a find that it has sent before may be read after that, from
  // another socket. So until it speaks to the group again, what it says to us alone is ignored for a moment.
  void OnOffer(const DiscoveryEntry& entry, std::uint32_t from, bool multicast, TimePoint now, DiscoveryOutput& out);
  void OnAcknowledge(const DiscoveryEntry& entry, std::uint32_t from, DiscoveryOutput& out);
  void OnPeerRestarted(std::uint32_t peer, TimePoint now, DiscoveryOutput& out);
  // The next acknowledgement is told even if it says the same as the last one.
  void ForgetAnswer(const ServiceInstance& key, eventgroup_t eventgroup);
  bool IsAccepted(const ServiceInstance& key, eventgroup_t eventgroup) const;

  void Poll(TimePoint now, DiscoveryOutput& out);
  TimePoint NextDeadline() const { return next_; }

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
  bool HasRoomFor(const ServiceInstance& key, std::uint32_t peer) const;
  bool MayComeBack(Instance& current, std::uint32_t rival, TimePoint now) const;
  void OnStopOffer(const DiscoveryEntry& offer, std::uint32_t from, TimePoint now, DiscoveryOutput& out);
  void Appear(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out);
  void Vanish(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out);
  std::map<ServiceInstance, Instance>::iterator Erase(std::map<ServiceInstance, Instance>::iterator instance);
  void WakeAt(TimePoint due) { next_ = std::min(next_, due); }
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
  std::set<std::tuple<service_t, Endpoint, instance_t>> at_endpoint_;       // of those available
  std::map<std::uint32_t, std::size_t> instances_of_;                       // how many of them each peer has
  std::map<std::pair<ServiceInstance, std::uint32_t>, TimePoint> stopped_;  // whose unicast offers are ignored so long
  std::map<SubscriptionKey, Subscription> subscriptions_;
  TimePoint next_ = kNever;  // not later than anything becomes due
};

}  // namespace vsomeip_v3::embedded
