#include "embedded_stack/discovery/offers.h"

#include <algorithm>
#include <utility>

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

namespace {
constexpr std::size_t kMaxAnswers = 1024;  // waiting at a time
}  // namespace

void Offers::Add(const ServiceInstance& key, const Offer& offer, TimePoint now) {
  Entry& entry = offers_[key];
  entry.offer = offer;
  entry.announced = 0;
  entry.has_rival = false;
  entry.next = now + InitialDelay();
}

bool Offers::Remove(const ServiceInstance& key, DiscoveryOutput& out) {
  const auto found = offers_.find(key);
  if (found == offers_.end()) return false;
  if (found->second.announced > 0) {
    DiscoveryEntry stop = OfferEntry(key, found->second.offer);
    stop.ttl = 0;
    out.entries.push_back({std::nullopt, stop});
  }
  offers_.erase(found);
  return true;
}

void Offers::AnnounceAgain(const ServiceInstance& key, TimePoint now) {
  const auto found = offers_.find(key);
  if (found != offers_.end() && found->second.announced > 0) found->second.next = now;
}

const Offers::Offer* Offers::Find(const ServiceInstance& key) const {
  const auto found = offers_.find(key);
  return found == offers_.end() ? nullptr : &found->second.offer;
}

bool Offers::MeetsRival(const ServiceInstance& key) {
  const auto found = offers_.find(key);
  return found != offers_.end() && !std::exchange(found->second.has_rival, true);
}

const instance_t* Offers::FindInstance(service_t service, std::size_t socket) const {
  for (auto it = offers_.lower_bound({service, 0}); it != offers_.end() && it->first.first == service; ++it) {
    if (it->second.offer.socket == socket) return &it->first.second;
  }
  return nullptr;
}

std::vector<ServiceInstance> Offers::All() const {
  std::vector<ServiceInstance> all;
  for (const auto& [key, entry] : offers_) all.push_back(key);
  return all;
}

DiscoveryEntry Offers::OfferEntry(const ServiceInstance& key, const Offer& offer) const {
  DiscoveryEntry entry;
  entry.type = EntryType::kOffer;
  entry.service = key.first;
  entry.instance = key.second;
  entry.major = offer.major;
  entry.ttl = settings_.ttl;
  entry.minor = offer.minor;
  entry.udp = offer.endpoint;
  return entry;
}

std::chrono::milliseconds Offers::InitialDelay() {
  std::uniform_int_distribution<std::int64_t> delay(settings_.initial_delay_min.count(),
                                                    settings_.initial_delay_max.count());
  return std::chrono::milliseconds(delay(random_));
}

// The repetition phase doubles its delay each time; then the cyclic offers begin.
std::chrono::milliseconds Offers::DelayAfter(unsigned announced) const {
  if (announced > settings_.repetitions_max) return settings_.cyclic_offer_delay;
  return settings_.repetitions_base_delay * (1U << (announced - 1));
}

void Offers::OnFind(const DiscoveryEntry& find, std::uint32_t from, TimePoint now, DiscoveryOutput& out) {
  for (const auto& [key, entry] : offers_) {
    const Offer& offer = entry.offer;
    const bool matches = key.first == find.service && (find.instance == ANY_INSTANCE || find.instance == key.second) &&
                         (find.major == ANY_MAJOR || find.major == offer.major) &&
                         (find.minor == ANY_MINOR || find.minor <= offer.minor);
    if (!matches || entry.announced == 0) continue;  // silent until the initial delay is over
    if (settings_.request_response_delay.count() == 0) {
      out.entries.push_back({from, OfferEntry(key, offer)});
    } else if (answers_.size() < kMaxAnswers) {
      answers_.push_back({now + settings_.request_response_delay, from, key});
    } else {
      out.drops.push_back(Drop::kDiscoveryLimit);
    }
  }
}

bool Offers::Accepts(const Entry& entry, const DiscoveryEntry& subscribe) const {
  return subscribe.major == entry.offer.major && !subscribe.bad_options && subscribe.udp &&
         subscribe.udp->IsUnicast() && has_eventgroup_(subscribe.service, subscribe.instance, subscribe.eventgroup);
}

std::size_t Offers::SubscriptionCount() const {
  std::size_t count = 0;
  for (const auto& [key, entry] : offers_) count += entry.subscriptions.size();
  return count;
}

void Offers::OnSubscribe(const DiscoveryEntry& subscribe, std::uint32_t from, TimePoint now, DiscoveryOutput& out) {
  const auto found = offers_.find({subscribe.service, subscribe.instance});
  DiscoveryEntry answer = subscribe;
  answer.type = EntryType::kAcknowledge;
  answer.udp.reset();
  bool accepted = found != offers_.end() && Accepts(found->second, subscribe);

  if (subscribe.ttl == 0) {  // a stop subscribe, which nobody answers
    if (accepted) found->second.subscriptions.erase({subscribe.eventgroup, *subscribe.udp});
    return;
  }
  bool is_new = false;
  if (accepted) {
    auto& subscriptions = found->second.subscriptions;
    const std::pair<eventgroup_t, Endpoint> key{subscribe.eventgroup, *subscribe.udp};
    const auto known = subscriptions.find(key);
    is_new = known == subscriptions.end() || known->second.expiry <= now;
    if (known == subscriptions.end() && SubscriptionCount() >= kMaxSubscriptions) {
      accepted = false;
      out.drops.push_back(Drop::kDiscoveryLimit);
    } else {
      subscriptions[key] = {from, ExpiryOf(subscribe.ttl, now)};
    }
  }
  if (!accepted) answer.ttl = 0;
  out.entries.push_back({from, answer});
  if (accepted && is_new) {
    out.subscribers.push_back({subscribe.service, subscribe.instance, subscribe.eventgroup, *subscribe.udp});
  }
}

void Offers::OnPeerRestarted(std::uint32_t peer) {
  for (auto& [key, entry] : offers_) {
    for (auto it = entry.subscriptions.begin(); it != entry.subscriptions.end();) {
      it = it->second.peer == peer ? entry.subscriptions.erase(it) : std::next(it);
    }
  }
}

std::set<Endpoint> Offers::Subscribers(const ServiceInstance& key, const std::set<eventgroup_t>& eventgroups,
                                       TimePoint now) const {
  std::set<Endpoint> subscribers;
  const auto found = offers_.find(key);
  if (found == offers_.end()) return subscribers;
  for (const auto& [eventgroup_and_endpoint, subscription] : found->second.subscriptions) {
    if (subscription.expiry <= now || eventgroups.count(eventgroup_and_endpoint.first) == 0) continue;
    subscribers.insert(eventgroup_and_endpoint.second);
  }
  return subscribers;
}

void Offers::Poll(TimePoint now, DiscoveryOutput& out) {
  const auto is_cyclic = [this](const Entry& entry) { return entry.announced > settings_.repetitions_max; };
  const bool cycle_due = std::any_of(offers_.begin(), offers_.end(), [&](const auto& item) {
    return is_cyclic(item.second) && item.second.next <= now;
  });
  for (auto& [key, entry] : offers_) {
    for (auto it = entry.subscriptions.begin(); it != entry.subscriptions.end();) {
      it = it->second.expiry <= now ? entry.subscriptions.erase(it) : std::next(it);
    }
    // All cyclic offers keep in step, so that they share messages.
    if (entry.next > now && !(cycle_due && is_cyclic(entry))) continue;
    out.entries.push_back({std::nullopt, OfferEntry(key, entry.offer)});
    if (entry.announced <= settings_.repetitions_max) ++entry.announced;
    entry.next = now + DelayAfter(entry.announced);
  }
  const auto waiting = std::stable_partition(answers_.begin(), answers_.end(),
                                             [now](const Answer& answer) { return answer.due <= now; });
  for (auto it = answers_.begin(); it != waiting; ++it) {
    if (const Offer* offer = Find(it->key)) out.entries.push_back({it->to, OfferEntry(it->key, *offer)});
  }
  answers_.erase(answers_.begin(), waiting);
}

TimePoint Offers::NextDeadline() const {
  TimePoint next = kNever;
  for (const auto& [key, entry] : offers_) {
    next = std::min(next, entry.next);
    for (const auto& [ignored, subscription] : entry.subscriptions) next = std::min(next, subscription.expiry);
  }
  for (const Answer& answer : answers_) next = std::min(next, answer.due);
  return next;
}

}  // namespace vsomeip_v3::embedded
