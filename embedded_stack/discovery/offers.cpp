#include "embedded_stack/discovery/offers.h"

#include <algorithm>
#include <utility>

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

namespace {
constexpr std::size_t kMaxAnswers = 1024;  // waiting at a time, or to one message
}  // namespace

void Offers::Add(const ServiceInstance& key, const Offer& offer, TimePoint now) {
  Entry& entry = offers_[key];
  entry.offer = offer;
  entry.announced = 0;
  entry.has_rival = false;
  entry.next = now + InitialDelay();
  on_socket_[{key.first, offer.socket}] = key.second;
  WakeAt(entry.next);
}

bool Offers::Remove(const ServiceInstance& key, DiscoveryOutput& out) {
  const auto found = offers_.find(key);
  if (found == offers_.end()) return false;
  if (found->second.announced > 0) {
    DiscoveryEntry stop = OfferEntry(key, found->second.offer);
    stop.ttl = 0;
    out.entries.push_back({std::nullopt, stop});
  }
  for (const auto& [subscriber, subscription] : found->second.subscriptions) Subtract(subscriber.second.address);
  on_socket_.erase({key.first, found->second.offer.socket});
  offers_.erase(found);
  return true;
}

void Offers::AnnounceAgain(const ServiceInstance& key, TimePoint now) {
  const auto found = offers_.find(key);
  if (found == offers_.end() || found->second.announced == 0) return;
  found->second.next = now;
  WakeAt(now);
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
  const auto found = on_socket_.find({service, socket});
  return found == on_socket_.end() ? nullptr : &found->second;
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
  for (auto it = offers_.lower_bound({find.service, 0}); it != offers_.end() && it->first.first == find.service; ++it) {
    const auto& [key, entry] = *it;
    const Offer& offer = entry.offer;
    const bool matches = (find.instance == ANY_INSTANCE || find.instance == key.second) &&
                         (find.major == ANY_MAJOR || find.major == offer.major) &&
                         (find.minor == ANY_MINOR || find.minor <= offer.minor);
    if (!matches || entry.announced == 0) continue;  // silent until the initial delay is over
    const TimePoint due = now + settings_.request_response_delay;
    if (std::max(answers_.size(), out.entries.size()) >= kMaxAnswers) {
      return out.drops.push_back(Drop::kDiscoveryLimit);
    }
    if (due == now) {
      out.entries.push_back({from, OfferEntry(key, offer)});
    } else {
      answers_.push_back({due, from, key});
      WakeAt(due);
    }
  }
}

// Values go to the one who asks for them: nobody subscribes for another address, or ends what another one has.
bool Offers::Accepts(const Entry& entry, const DiscoveryEntry& subscribe, std::uint32_t from) const {
  return subscribe.major == entry.offer.major && !subscribe.bad_options && subscribe.udp &&
         subscribe.udp->IsUnicast() && subscribe.udp->address == from &&
         has_eventgroup_(subscribe.service, subscribe.instance, subscribe.eventgroup);
}

bool Offers::HasRoomFor(std::uint32_t peer) const {
  const auto found = subscriptions_of_.find(peer);
  const std::size_t own = found == subscriptions_of_.end() ? 0 : found->second;
  return own < std::min(kMaxSubscriptionsOfPeer, (kMaxSubscriptions - subscription_count_ + 1) / 2);
}

void Offers::Subtract(std::uint32_t peer) {
  --subscription_count_;
  const auto own = subscriptions_of_.find(peer);
  if (--own->second == 0) subscriptions_of_.erase(own);
}

void Offers::TellSubscriber(const ServiceInstance& key, const SubscriptionKey& subscriber, Subscription& subscription,
                            TimePoint now, DiscoveryOutput& out) {
  if (!subscription.wants_value || subscription.next_value > now) return;
  subscription.wants_value = false;
  subscription.next_value = now + kInitialValueInterval;
  out.subscribers.push_back({key.first, key.second, subscriber.first, subscriber.second});
}

void Offers::OnSubscribe(const DiscoveryEntry& subscribe, std::uint32_t from, TimePoint now, DiscoveryOutput& out) {
  const auto found = offers_.find({subscribe.service, subscribe.instance});
  DiscoveryEntry answer = subscribe;
  answer.type = EntryType::kAcknowledge;
  answer.udp.reset();
  bool accepted = found != offers_.end() && Accepts(found->second, subscribe, from);
  const SubscriptionKey subscriber{subscribe.eventgroup, subscribe.udp.value_or(Endpoint())};

  if (subscribe.ttl == 0) {  // a stop subscribe, which nobody answers
    if (!accepted) return;
    const auto known = found->second.subscriptions.find(subscriber);
    if (known != found->second.subscriptions.end()) End(known->second, now);
    return;
  }
  Subscription* subscription = nullptr;
  if (accepted) {
    auto& subscriptions = found->second.subscriptions;
    auto known = subscriptions.find(subscriber);
    if (known == subscriptions.end() && HasRoomFor(from)) {
      known = subscriptions.try_emplace(subscriber).first;
      ++subscription_count_;
      ++subscriptions_of_[from];
    }
    if (known != subscriptions.end()) subscription = &known->second;
  }
  if (accepted && subscription == nullptr) out.drops.push_back(Drop::kDiscoveryLimit);
  if (subscription == nullptr) answer.ttl = 0;
  out.entries.push_back({from, answer});
  if (subscription == nullptr) return;
  if (subscription->expiry <= now) subscription->wants_value = true;
  subscription->expiry = ExpiryOf(subscribe.ttl, now);
  TellSubscriber(found->first, subscriber, *subscription, now, out);
  WakeAt(subscription->wants_value ? subscription->next_value : subscription->expiry);
}

void Offers::End(Subscription& subscription, TimePoint now) {
  subscription.expiry = std::min(subscription.expiry, now);
  subscription.wants_value = false;
  WakeAt(std::max(now, subscription.next_value));
}

void Offers::OnPeerRestarted(std::uint32_t peer, TimePoint now) {
  if (!HasPeer(peer)) return;
  for (auto& [key, entry] : offers_) {
    for (auto& [subscriber, subscription] : entry.subscriptions) {
      if (subscriber.second.address == peer) End(subscription, now);
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

void Offers::PollSubscriptions(const ServiceInstance& key, Entry& entry, TimePoint now, DiscoveryOutput& out) {
  for (auto it = entry.subscriptions.begin(); it != entry.subscriptions.end();) {
    auto& [subscriber, subscription] = *it;
    const bool is_over = subscription.expiry <= now;
    if (is_over && subscription.next_value <= now) {
      Subtract(subscriber.second.address);
      it = entry.subscriptions.erase(it);
      continue;
    }
    if (!is_over) TellSubscriber(key, subscriber, subscription, now, out);
    WakeAt(is_over || subscription.wants_value ? subscription.next_value : subscription.expiry);
    ++it;
  }
}

void Offers::Poll(TimePoint now, DiscoveryOutput& out) {
  if (now < next_) return;
  next_ = kNever;
  const auto is_cyclic = [this](const Entry& entry) { return entry.announced > settings_.repetitions_max; };
  const bool cycle_due = std::any_of(offers_.begin(), offers_.end(), [&](const auto& item) {
    return is_cyclic(item.second) && item.second.next <= now;
  });
  for (auto& [key, entry] : offers_) {
    PollSubscriptions(key, entry, now, out);
    // All cyclic offers keep in step, so that they share messages.
    if (entry.next <= now || (cycle_due && is_cyclic(entry))) {
      out.entries.push_back({std::nullopt, OfferEntry(key, entry.offer)});
      if (entry.announced <= settings_.repetitions_max) ++entry.announced;
      entry.next = now + DelayAfter(entry.announced);
    }
    WakeAt(entry.next);
  }
  const auto waiting = std::stable_partition(answers_.begin(), answers_.end(),
                                             [now](const Answer& answer) { return answer.due <= now; });
  for (auto it = answers_.begin(); it != waiting; ++it) {
    if (const Offer* offer = Find(it->key)) out.entries.push_back({it->to, OfferEntry(it->key, *offer)});
  }
  answers_.erase(answers_.begin(), waiting);
  for (const Answer& answer : answers_) WakeAt(answer.due);
}

}  // namespace vsomeip_v3::embedded
