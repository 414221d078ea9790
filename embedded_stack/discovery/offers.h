#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "embedded_stack/configuration.h"
#include "embedded_stack/discovery/output.h"

namespace vsomeip_v3::embedded {

// The providing half of discovery: announces what is offered here and keeps the subscribers. Not synchronized.
class Offers {
 public:
  static constexpr std::size_t kMaxSubscriptions = 4096;
  static constexpr std::size_t kMaxSubscriptionsOfPeer = 512;  // and no more than half of what is free
  // Between two times that the present values go to one endpoint; who asks sooner gets them then.
  static constexpr std::chrono::milliseconds kInitialValueInterval{500};

  // Tells whether an offered instance has an eventgroup; subscriptions to others are rejected.
  using HasEventgroup = std::function<bool(service_t, instance_t, eventgroup_t)>;

  Offers(const DiscoverySettings& settings, HasEventgroup has_eventgroup)
      : settings_(settings), has_eventgroup_(std::move(has_eventgroup)), random_(std::random_device{}()) {}

  struct Offer {
    major_version_t major = 0;
    minor_version_t minor = 0;
    Endpoint endpoint;       // where requests go
    std::size_t socket = 0;  // the local socket behind the endpoint
  };

  // Begins to announce at the next Poll() after the initial delay.
  void Add(const ServiceInstance& key, const Offer& offer, TimePoint now);
  // Says so to the group, and forgets the subscribers. False if it was not offered.
  bool Remove(const ServiceInstance& key, DiscoveryOutput& out);
  // Announces at the next Poll() even if it is not time yet.
  void AnnounceAgain(const ServiceInstance& key, TimePoint now);

  const Offer* Find(const ServiceInstance& key) const;
  // To be called with each offer of another node. True for the first one of an instance that is offered here as well.
  bool MeetsRival(const ServiceInstance& key);
  // The instance of `service` that is offered on a socket.
  const instance_t* FindInstance(service_t service, std::size_t socket) const;
  bool HasPeer(std::uint32_t peer) const { return subscriptions_of_.count(peer) != 0; }
  std::vector<ServiceInstance> All() const;

  void OnFind(const DiscoveryEntry& entry, std::uint32_t from, TimePoint now, DiscoveryOutput& out);
  void OnSubscribe(const DiscoveryEntry& entry, std::uint32_t from, TimePoint now, DiscoveryOutput& out);
  void OnPeerRestarted(std::uint32_t peer, TimePoint now);

  // Everyone who is subscribed to one of the eventgroups, once.
  std::set<Endpoint> Subscribers(const ServiceInstance& key, const std::set<eventgroup_t>& eventgroups,
                                 TimePoint now) const;

  // Sends what is due and drops what has expired.
  void Poll(TimePoint now, DiscoveryOutput& out);
  TimePoint NextDeadline() const { return next_; }

 private:
  // Stays after its end for as long as its endpoint must wait for the values.
  struct Subscription {
    TimePoint expiry;
    TimePoint next_value;
    bool wants_value = false;
  };
  using SubscriptionKey = std::pair<eventgroup_t, Endpoint>;  // of the peer that has the endpoint's address
  struct Entry {
    Offer offer;
    TimePoint next;          // announcement
    unsigned announced = 0;  // times, up to the end of the repetition phase
    bool has_rival = false;  // another node has offered the same instance
    std::map<SubscriptionKey, Subscription> subscriptions;
  };
  struct Answer {
    TimePoint due;
    std::uint32_t to;
    ServiceInstance key;
  };

  DiscoveryEntry OfferEntry(const ServiceInstance& key, const Offer& offer) const;
  std::chrono::milliseconds InitialDelay();
  std::chrono::milliseconds DelayAfter(unsigned announced) const;
  bool Accepts(const Entry& entry, const DiscoveryEntry& subscribe, std::uint32_t from) const;
  bool HasRoomFor(std::uint32_t peer) const;
  void Subtract(std::uint32_t peer);
  void End(Subscription& subscription, TimePoint now);
  void TellSubscriber(const ServiceInstance& key, const SubscriptionKey& subscriber, Subscription& subscription,
                      TimePoint now, DiscoveryOutput& out);
  void PollSubscriptions(const ServiceInstance& key, Entry& entry, TimePoint now, DiscoveryOutput& out);
  void WakeAt(TimePoint due) { next_ = std::min(next_, due); }

  DiscoverySettings settings_;
  HasEventgroup has_eventgroup_;
  std::mt19937 random_;
  std::map<ServiceInstance, Entry> offers_;
  std::map<std::pair<service_t, std::size_t>, instance_t> on_socket_;  // which instance is offered there
  std::map<std::uint32_t, std::size_t> subscriptions_of_;              // how many each peer has
  std::size_t subscription_count_ = 0;
  std::vector<Answer> answers_;  // to finds, waiting for the response delay
  TimePoint next_ = kNever;      // not later than anything becomes due
};

}  // namespace vsomeip_v3::embedded
