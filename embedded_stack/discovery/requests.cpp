#include "embedded_stack/discovery/requests.h"

#include <algorithm>

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

void Requests::Request(const ServiceInstance& key, major_version_t major, minor_version_t minor, TimePoint now) {
  wishes_[key] = {major, minor, 0, now};
  WakeAt(now);
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
    it = is_used ? std::next(it) : Erase(it);
  }
}

bool Requests::IsRequested(const ServiceInstance& key, major_version_t major, minor_version_t minor) const {
  for (const service_t service : {key.first, ANY_SERVICE}) {
    for (const instance_t instance : {key.second, ANY_INSTANCE}) {
      const auto found = wishes_.find({service, instance});
      if (found == wishes_.end()) continue;
      const Wish& wish = found->second;
      if ((wish.major == ANY_MAJOR || wish.major == major) && (wish.minor == ANY_MINOR || wish.minor <= minor)) {
        return true;
      }
    }
  }
  return false;
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
  const auto found = at_endpoint_.lower_bound({service, endpoint, 0});
  const bool is_there =
      found != at_endpoint_.end() && std::get<0>(*found) == service && std::get<1>(*found) == endpoint;
  return is_there ? &std::get<2>(*found) : nullptr;
}

void Requests::Appear(const ServiceInstance& key, const Instance& instance, TimePoint now, DiscoveryOutput& out) {
  available_[key] = instance;
  at_endpoint_.emplace(key.first, instance.endpoint, key.second);
  ++instances_of_[instance.peer];
  WakeAt(instance.expiry);
  out.availability.push_back({key.first, key.second, instance.major, instance.minor, true});
  SubscribeAll(key, now, out);
}

std::map<ServiceInstance, Requests::Instance>::iterator Requests::Erase(
    std::map<ServiceInstance, Instance>::iterator instance) {
  at_endpoint_.erase({instance->first.first, instance->second.endpoint, instance->first.second});
  const auto count = instances_of_.find(instance->second.peer);
  if (--count->second == 0) instances_of_.erase(count);
  return available_.erase(instance);
}

void Requests::Vanish(const ServiceInstance& key, TimePoint now, DiscoveryOutput& out) {
  const auto found = available_.find(key);
  out.availability.push_back({key.first, key.second, found->second.major, found->second.minor, false});
  Erase(found);
  for (auto it = subscriptions_.lower_bound({key.first, key.second, 0}); it != subscriptions_.end(); ++it) {
    if (std::get<0>(it->first) != key.first || std::get<1>(it->first) != key.second) break;
    it->second.state = State::kIdle;
    it->second.refresh = kNever;
  }
  for (auto& [wish_key, wish] : wishes_) {  // a find reaches a provider whose offer is not due for a while
    if (wish_key.first == key.first && (wish_key.second == ANY_INSTANCE || wish_key.second == key.second)) {
      wish.searched = 0;
      wish.next = now + settings_.repetitions_base_delay;
      WakeAt(wish.next);
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
  auto refresh = std::chrono::milliseconds(std::chrono::seconds(std::min(settings_.ttl, kMaxTtl))) / 2;
  if (subscription.state != State::kAccepted) refresh = std::min(refresh, std::chrono::milliseconds(1000));
  subscription.refresh = now + refresh;
  WakeAt(subscription.refresh);

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

void Requests::OnStopOffer(const DiscoveryEntry& offer, std::uint32_t from, TimePoint now, DiscoveryOutput& out) {
  const ServiceInstance key{offer.service, offer.instance};
  const auto known = available_.find(key);
  const bool is_known = known != available_.end();
  const bool is_remembered = stopped_.count({key, from}) != 0 || stopped_.size() < kMaxInstances;
  if (is_remembered && (is_known || IsRequested(key, offer.major, offer.minor))) {
    stopped_[{key, from}] = now + kStopMemory;
    WakeAt(now + kStopMemory);
  }
  if (is_known) known->second.rivals.erase(from);
  if (is_known && !known->second.local && known->second.peer == from) Vanish(key, now, out);
}

// Nobody who is known loses its place to a newcomer. What is asked for by name always has one.
bool Requests::HasRoomFor(const ServiceInstance& key, std::uint32_t peer) const {
  if (wishes_.count(key) != 0) return true;
  const auto own = instances_of_.find(peer);
  return (available_.size() < kMaxInstances || available_.count(key) != 0) &&
         (own == instances_of_.end() || own->second < kMaxInstancesOfPeer);
}

// Counts an offer of `rival`. It is used again when it has offered twice while the one that took its place was silent
// for more than a cycle: so two live providers do not make the instance flap, and a single false offer is soon over.
bool Requests::MayComeBack(Instance& current, std::uint32_t rival, TimePoint now) const {
  Rival& known = current.rivals.at(rival);
  known.heard = now;
  return ++known.offers >= 2 && now - current.heard >= settings_.cyclic_offer_delay * 3 / 2;
}

void Requests::OnOffer(const DiscoveryEntry& offer, std::uint32_t from, bool multicast, TimePoint now,
                       DiscoveryOutput& out) {
  if (offer.ttl == 0) return OnStopOffer(offer, from, now, out);
  const ServiceInstance key{offer.service, offer.instance};
  if (!IsRequested(key, offer.major, offer.minor)) return;
  if (!offer.udp || offer.bad_options || !offer.udp->IsUnicast()) {
    out.drops.push_back(Drop::kBadDiscovery);
    return;
  }
  const auto stopped = stopped_.find({key, from});
  if (stopped != stopped_.end()) {
    if (!multicast && now < stopped->second) return;
    stopped_.erase(stopped);
  }
  Instance instance{offer.major, offer.minor, *offer.udp, from, false, ExpiryOf(offer.ttl, now), now, {}};
  const auto known = available_.find(key);
  if (known == available_.end()) {
    if (HasRoomFor(key, from)) return Appear(key, instance, now, out);
    out.drops.push_back(Drop::kDiscoveryLimit);
    return;
  }
  Instance& current = known->second;
  const bool same_offer = current.peer == from && current.endpoint == instance.endpoint &&
                          current.major == instance.major && current.minor == instance.minor;
  if (same_offer) {
    current.expiry = instance.expiry;
    current.heard = now;
    for (auto& [peer, rival] : current.rivals) rival.offers = 0;
    WakeAt(current.expiry);
    SubscribeAll(key, now, out);
  } else if (current.local || (current.rivals.count(from) != 0 && !MayComeBack(current, from, now))) {
    out.drops.push_back(Drop::kDuplicateOffer);
  } else if (current.peer != from && !HasRoomFor(key, from)) {
    out.drops.push_back(Drop::kDiscoveryLimit);
  } else {
    // Most likely the provider was killed and started again at another address. So the newcomer takes over.
    instance.rivals = std::move(current.rivals);
    instance.rivals.erase(from);
    if (current.peer != from) {
      if (instance.rivals.size() >= kMaxRivals) {  // it is the live ones that matter
        instance.rivals.erase(
            std::min_element(instance.rivals.begin(), instance.rivals.end(),
                             [](const auto& a, const auto& b) { return a.second.heard < b.second.heard; }));
      }
      instance.rivals[current.peer] = {0, current.heard};
    }
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
  out.subscriptions.push_back({entry.service, entry.instance, entry.eventgroup, state == State::kAccepted});
}

void Requests::OnPeerRestarted(std::uint32_t peer, TimePoint now, DiscoveryOutput& out) {
  std::vector<ServiceInstance> lost;
  for (auto& [key, instance] : available_) {
    instance.rivals.erase(peer);
    if (!instance.local && instance.peer == peer) lost.push_back(key);
  }
  for (const ServiceInstance& key : lost) Vanish(key, now, out);
}

void Requests::ForgetAnswer(const ServiceInstance& key, eventgroup_t eventgroup) {
  const auto found = subscriptions_.find({key.first, key.second, eventgroup});
  if (found != subscriptions_.end() && found->second.state != State::kIdle) found->second.state = State::kPending;
}

bool Requests::IsAccepted(const ServiceInstance& key, eventgroup_t eventgroup) const {
  const auto found = subscriptions_.find({key.first, key.second, eventgroup});
  return found != subscriptions_.end() && found->second.state == State::kAccepted;
}

bool Requests::IsSatisfied(const ServiceInstance& wish) const {
  return wish.second != ANY_INSTANCE && available_.count(wish) != 0;
}

void Requests::Poll(TimePoint now, DiscoveryOutput& out) {
  if (now < next_) return;
  next_ = kNever;
  std::vector<ServiceInstance> expired;
  for (const auto& [key, instance] : available_) {
    if (instance.expiry <= now) {
      expired.push_back(key);
    } else {
      WakeAt(instance.expiry);
    }
  }
  for (const ServiceInstance& key : expired) Vanish(key, now, out);
  for (auto it = stopped_.begin(); it != stopped_.end();) {
    const bool is_over = it->second <= now;
    if (!is_over) WakeAt(it->second);
    it = is_over ? stopped_.erase(it) : std::next(it);
  }

  for (auto& [key, wish] : wishes_) {
    if (wish.next > now) {
      WakeAt(wish.next);
      continue;
    }
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
    WakeAt(wish.next);
    ++wish.searched;
  }
  for (auto& [key, subscription] : subscriptions_) {
    if (subscription.refresh > now) {
      WakeAt(subscription.refresh);
      continue;
    }
    subscription.refresh = kNever;
    const Instance* instance = Find({std::get<0>(key), std::get<1>(key)});
    if (instance != nullptr) SendSubscribe(key, subscription, *instance, now, out);
  }
}

}  // namespace vsomeip_v3::embedded
