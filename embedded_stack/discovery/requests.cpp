#include "embedded_stack/discovery/requests.h"

#include <algorithm>

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

void Requests::Request(const ServiceInstance& key, major_version_t major, minor_version_t minor, TimePoint now) {
  wishes_[key] = {major, minor, 0, now};
}

void Requests::Release(const ServiceInstance& key, DiscoveryOutput& out) {
  wishes_.erase(key);
  for (auto it = subscriptions_.begin(); it != subscriptions_.end();) {
    const ServiceInstance target{std::get<0>(it->first), std::get<1>(it->first)};
    const Instance* instance = Find(target);
    const bool is_used = instance != nullptr ? IsRequested(target, instance->major, instance->minor) : target != key;
    if (instance != nullptr && !is_used && it->second.state != State::kIdle) {
      SendStop(it->first, it->second, *instance, out);
    }
    it = is_used ? std::next(it) : subscriptions_.erase(it);
  }
  for (auto it = available_.begin(); it != available_.end();) {
    const bool is_used = IsRequested(it->first, it->second.major, it->second.minor);
    if (!is_used) out.released.push_back(it->first);
    it = is_used ? std::next(it) : available_.erase(it);
  }
}

bool Requests::IsRequested(const ServiceInstance& key, major_version_t major, minor_version_t minor) const {
  return std::any_of(wishes_.begin(), wishes_.end(), [&](const auto& item) {
    const auto& [service, instance] = item.first;
    const Wish& wish = item.second;
    return (service == ANY_SERVICE || service == key.first) && (instance == ANY_INSTANCE || instance == key.second) &&
           (wish.major == ANY_MAJOR || wish.major == major) && (wish.minor == ANY_MINOR || wish.minor <= minor);
  });
}

void Requests::AddLocal(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out) {
  local_[key] = instance;
  if (!IsRequested(key, instance.major, instance.minor)) return;
  if (available_.count(key) != 0) Vanish(key, now, out);
  Appear(key, instance, now, out);
}

void Requests::RemoveLocal(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out) {
  local_.erase(key);
  const auto found = available_.find(key);
  if (found != available_.end() && found->second.local) Vanish(key, now, out);
}

const Requests::Instance* Requests::Find(const ServiceInstance& key) const {
  const auto found = available_.find(key);
  return found == available_.end() ? nullptr : &found->second;
}

const instance_t* Requests::FindInstance(service_t service, const Endpoint& endpoint) const {
  for (auto it = available_.lower_bound({service, 0}); it != available_.end() && it->first.first == service; ++it) {
    if (it->second.endpoint == endpoint) return &it->first.second;
  }
  return nullptr;
}

void Requests::Appear(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out) {
  available_[key] = instance;
  out.availability.push_back({key.first, key.second, instance.major, instance.minor, true});
  SubscribeAll(key, now, out);
}

void Requests::Vanish(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out) {
  const auto found = available_.find(key);
  out.availability.push_back({key.first, key.second, found->second.major, found->second.minor, false});
  available_.erase(found);
  for (auto it = subscriptions_.lower_bound({key.first, key.second, 0}); it != subscriptions_.end(); ++it) {
    if (std::get<0>(it->first) != key.first || std::get<1>(it->first) != key.second) break;
    it->second.state = State::kIdle;
    it->second.refresh = kNever;
  }
  for (auto& [wish_key, wish] : wishes_) {  // a find reaches a provider whose offer is not due for a while
    if (wish_key.first == key.first && (wish_key.second == ANY_INSTANCE || wish_key.second == key.second)) {
      wish.searched = 0;
      wish.next = now + settings_.repetitions_base_delay;
    }
  }
}

void Requests::Subscribe(const ServiceInstance& key, eventgroup_t eventgroup, major_version_t major, TimePoint now,
                         DiscoveryOutput& out) {
  const SubscriptionKey subscription_key{key.first, key.second, eventgroup};
  const auto position = subscriptions_.try_emplace(subscription_key, Subscription{major}).first;
  position->second.major = major;
  State& state = position->second.state;
  if (state == State::kRejected) state = State::kIdle;  // who asks again is told again
  const Instance* instance = Find(key);
  if (instance != nullptr && state == State::kIdle && instance->major == major) {
    SendSubscribe(subscription_key, position->second, *instance, now, out);
  }
}

void Requests::Renew(const ServiceInstance& key, eventgroup_t eventgroup, TimePoint now, DiscoveryOutput& out) {
  const auto found = subscriptions_.find({key.first, key.second, eventgroup});
  const Instance* instance = Find(key);
  if (found == subscriptions_.end() || instance == nullptr || found->second.state == State::kIdle) return;
  SendStop(found->first, found->second, *instance, out);
  found->second.state = State::kIdle;
  SendSubscribe(found->first, found->second, *instance, now, out);
}

void Requests::Unsubscribe(const ServiceInstance& key, eventgroup_t eventgroup, DiscoveryOutput& out) {
  const auto found = subscriptions_.find({key.first, key.second, eventgroup});
  if (found == subscriptions_.end()) return;
  const Instance* instance = Find(key);
  if (instance != nullptr && found->second.state != State::kIdle) SendStop(found->first, found->second, *instance, out);
  subscriptions_.erase(found);
}

void Requests::UnsubscribeAll(DiscoveryOutput& out) {
  for (const auto& [key, subscription] : subscriptions_) {
    const Instance* instance = Find({std::get<0>(key), std::get<1>(key)});
    if (instance != nullptr && subscription.state != State::kIdle) SendStop(key, subscription, *instance, out);
  }
  subscriptions_.clear();
}

void Requests::SubscribeAll(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out) {
  const Instance& instance = available_.at(key);
  for (auto it = subscriptions_.lower_bound({key.first, key.second, 0}); it != subscriptions_.end(); ++it) {
    if (std::get<0>(it->first) != key.first || std::get<1>(it->first) != key.second) break;
    if (it->second.major == instance.major) SendSubscribe(it->first, it->second, instance, now, out);
  }
}

// An accepted or rejected subscription stays so until the provider says otherwise.
void Requests::SendSubscribe(const SubscriptionKey& key, Subscription& subscription, const Instance& instance,
                             TimePoint now, DiscoveryOutput& out) {
  if (subscription.state == State::kIdle) subscription.state = State::kPending;
  auto refresh = std::chrono::milliseconds(std::chrono::seconds(settings_.ttl)) / 2;
  if (subscription.state != State::kAccepted) refresh = std::min(refresh, std::chrono::milliseconds(1000));
  const bool lasts = settings_.ttl == kForever && subscription.state == State::kAccepted;
  subscription.refresh = lasts ? kNever : now + refresh;

  DiscoveryEntry entry;
  entry.type = EntryType::kSubscribe;
  std::tie(entry.service, entry.instance, entry.eventgroup) = key;
  entry.major = instance.major;
  entry.ttl = settings_.ttl;
  entry.udp = local_endpoint_;
  out.entries.push_back({instance.peer, entry});
}

void Requests::SendStop(const SubscriptionKey& key, const Subscription& subscription, const Instance& instance,
                        DiscoveryOutput& out) const {
  DiscoveryEntry entry;
  entry.type = EntryType::kSubscribe;
  std::tie(entry.service, entry.instance, entry.eventgroup) = key;
  entry.major = subscription.major;
  entry.ttl = 0;
  entry.udp = local_endpoint_;
  out.entries.push_back({instance.peer, entry});
}

void Requests::OnOffer(const DiscoveryEntry& offer, std::uint32_t from, TimePoint now, DiscoveryOutput& out) {
  const ServiceInstance key{offer.service, offer.instance};
  const auto known = available_.find(key);
  if (offer.ttl == 0) {
    if (known != available_.end()) known->second.superseded.erase(from);
    if (known != available_.end() && !known->second.local && known->second.peer == from) Vanish(key, now, out);
    return;
  }
  if (!IsRequested(key, offer.major, offer.minor)) return;
  if (!offer.udp || offer.bad_options || !offer.udp->IsUnicast()) {
    out.drops.push_back(Drop::kBadDiscovery);
    return;
  }
  Instance instance{offer.major, offer.minor, *offer.udp, from, false, ExpiryOf(offer.ttl, now), {}};
  if (known == available_.end()) {
    if (available_.size() < kMaxInstances) return Appear(key, instance, now, out);
    out.drops.push_back(Drop::kDiscoveryLimit);
    return;
  }
  Instance& current = known->second;
  const bool same_offer = current.peer == from && current.endpoint == instance.endpoint &&
                          current.major == instance.major && current.minor == instance.minor;
  if (same_offer) {
    current.expiry = instance.expiry;
    SubscribeAll(key, now, out);
  } else if (current.local || current.superseded.count(from) != 0) {
    out.drops.push_back(Drop::kDuplicateOffer);
  } else {
    // Most likely the provider was killed and started again at another address. So the newcomer takes over, and the
    // former peer is not heard again as long as it lasts: two live providers do not make the instance flap.
    instance.superseded = current.superseded;
    if (current.peer != from && instance.superseded.size() < kMaxInstances) instance.superseded.insert(current.peer);
    Vanish(key, now, out);
    Appear(key, instance, now, out);
  }
}

void Requests::OnAcknowledge(const DiscoveryEntry& entry, std::uint32_t from, DiscoveryOutput& out) {
  const Instance* instance = Find({entry.service, entry.instance});
  const auto found = subscriptions_.find({entry.service, entry.instance, entry.eventgroup});
  if (instance == nullptr || instance->peer != from || found == subscriptions_.end() ||
      found->second.state == State::kIdle) {
    return;
  }
  const State state = entry.ttl == 0 ? State::kRejected : State::kAccepted;
  if (found->second.state == state) return;
  found->second.state = state;
  if (state == State::kAccepted && settings_.ttl == kForever) found->second.refresh = kNever;
  out.subscriptions.push_back({entry.service, entry.instance, entry.eventgroup, state == State::kAccepted});
}

void Requests::OnPeerRestarted(std::uint32_t peer, TimePoint now, DiscoveryOutput& out) {
  std::vector<ServiceInstance> lost;
  for (auto& [key, instance] : available_) {
    instance.superseded.erase(peer);
    if (!instance.local && instance.peer == peer) lost.push_back(key);
  }
  for (const ServiceInstance& key : lost) Vanish(key, now, out);
}

bool Requests::IsSatisfied(const ServiceInstance& wish) const {
  return wish.second != ANY_INSTANCE && available_.count(wish) != 0;
}

void Requests::Poll(TimePoint now, DiscoveryOutput& out) {
  std::vector<ServiceInstance> expired;
  for (const auto& [key, instance] : available_) {
    if (instance.expiry <= now) expired.push_back(key);
  }
  for (const ServiceInstance& key : expired) Vanish(key, now, out);

  for (auto& [key, wish] : wishes_) {
    if (wish.next > now) continue;
    if (wish.searched == 0) {
      for (const auto& [local_key, instance] : local_) {
        if (available_.count(local_key) == 0 && IsRequested(local_key, instance.major, instance.minor)) {
          Appear(local_key, instance, now, out);
        }
      }
    }
    wish.next = kNever;
    if (IsSatisfied(key) || key.first == ANY_SERVICE) continue;
    DiscoveryEntry find;
    find.type = EntryType::kFind;
    std::tie(find.service, find.instance) = key;
    find.major = wish.major;
    find.minor = wish.minor;
    find.ttl = settings_.ttl;
    out.entries.push_back({std::nullopt, find});
    if (wish.searched < settings_.repetitions_max)
      wish.next = now + settings_.repetitions_base_delay * (1U << wish.searched);
    ++wish.searched;
  }
  for (auto& [key, subscription] : subscriptions_) {
    if (subscription.refresh > now) continue;
    subscription.refresh = kNever;
    const Instance* instance = Find({std::get<0>(key), std::get<1>(key)});
    if (instance != nullptr) SendSubscribe(key, subscription, *instance, now, out);
  }
}

TimePoint Requests::NextDeadline() const {
  TimePoint next = kNever;
  for (const auto& [key, wish] : wishes_) next = std::min(next, wish.next);
  for (const auto& [key, instance] : available_) next = std::min(next, instance.expiry);
  for (const auto& [key, subscription] : subscriptions_) next = std::min(next, subscription.refresh);
  return next;
}

}  // namespace vsomeip_v3::embedded
