#include "embedded_stack/events.h"

#include <algorithm>

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

void OfferedEvents::Offer(const ServiceInstance& key, event_t id, Event event) {
  Event& stored = events_[key][id];
  event.value = std::move(stored.value);
  event.next_cycle = stored.next_cycle;
  stored = std::move(event);
}

void OfferedEvents::StopOffer(const ServiceInstance& key, event_t id) {
  const auto found = events_.find(key);
  if (found == events_.end()) return;
  found->second.erase(id);
  if (found->second.empty()) events_.erase(found);
}

void OfferedEvents::ForgetValues(const ServiceInstance& key) {
  const auto found = events_.find(key);
  if (found == events_.end()) return;
  for (auto& [id, event] : found->second) {
    event.value.reset();
    event.next_cycle = kNever;
  }
}

const OfferedEvents::Event* OfferedEvents::Find(const ServiceInstance& key, event_t id) const {
  const auto found = events_.find(key);
  if (found == events_.end()) return nullptr;
  const auto event = found->second.find(id);
  return event == found->second.end() ? nullptr : &event->second;
}

bool OfferedEvents::HasEventgroup(const ServiceInstance& key, eventgroup_t eventgroup) const {
  const auto found = events_.find(key);
  return found != events_.end() && std::any_of(found->second.begin(), found->second.end(), [&](const auto& item) {
           return item.second.eventgroups.count(eventgroup) != 0;
         });
}

bool OfferedEvents::SetValue(const ServiceInstance& key, event_t id, SharedBytes value, bool force, TimePoint now) {
  Event& event = events_.at(key).at(id);
  const bool is_field = event.type == event_type_e::ET_FIELD;
  const bool unchanged = is_field && event.value && *event.value == *value;
  if (unchanged && !force && event.cycle.count() == 0) return false;
  event.value = std::move(value);
  if (event.cycle.count() > 0 && (event.next_cycle == kNever || event.change_resets_cycle)) {
    event.next_cycle = now + event.cycle;
    next_ = std::min(next_, event.next_cycle);
  }
  return event.update_on_change || force;
}

std::vector<event_t> OfferedEvents::FieldsOf(const ServiceInstance& key, eventgroup_t eventgroup) const {
  std::vector<event_t> fields;
  const auto found = events_.find(key);
  if (found == events_.end()) return fields;
  for (const auto& [id, event] : found->second) {
    if (event.type == event_type_e::ET_FIELD && event.value && event.eventgroups.count(eventgroup) != 0) {
      fields.push_back(id);
    }
  }
  return fields;
}

std::vector<OfferedEvents::Due> OfferedEvents::Poll(TimePoint now) {
  std::vector<Due> due;
  if (now < next_) return due;
  next_ = kNever;
  for (auto& [key, events] : events_) {
    for (auto& [id, event] : events) {
      if (event.next_cycle <= now) {
        event.next_cycle = now + event.cycle;
        due.push_back({key, id});
      }
      next_ = std::min(next_, event.next_cycle);
    }
  }
  return due;
}

void UsedEvents::Request(const ServiceInstance& key, event_t id, const std::set<eventgroup_t>& eventgroups,
                         event_type_e type) {
  Requested& requested = instances_[key].requested[id];
  requested.eventgroups.insert(eventgroups.begin(), eventgroups.end());
  requested.type = type;
}

void UsedEvents::Release(const ServiceInstance& key, event_t id) {
  const auto found = instances_.find(key);
  if (found != instances_.end()) found->second.requested.erase(id);
}

void UsedEvents::Clear() { instances_.clear(); }

const UsedEvents::Instance* UsedEvents::Find(const ServiceInstance& key) const {
  const auto found = instances_.find(key);
  return found == instances_.end() ? nullptr : &found->second;
}

UsedEvents::Added UsedEvents::Subscribe(const ServiceInstance& key, eventgroup_t eventgroup, event_t id) {
  const auto [group, is_new_group] = instances_[key].subscribed.try_emplace(eventgroup);
  const auto [event, is_new_event] = group->second.try_emplace(id, false);
  if (is_new_group) return Added::kNewEventgroup;
  if (is_new_event) return Added::kNewEvent;
  return event->second ? Added::kAccepted : Added::kPending;
}

bool UsedEvents::Unsubscribe(const ServiceInstance& key, eventgroup_t eventgroup, event_t id) {
  const auto found = instances_.find(key);
  if (found == instances_.end()) return false;
  const auto group = found->second.subscribed.find(eventgroup);
  if (group == found->second.subscribed.end()) return false;
  group->second.erase(id);
  if (id != ANY_EVENT && !group->second.empty()) return false;
  found->second.subscribed.erase(group);
  return true;
}

void UsedEvents::Unsubscribe(const ServiceInstance& key) {
  Lose(key);
  const auto found = instances_.find(key);
  if (found != instances_.end()) found->second.subscribed.clear();
}

bool UsedEvents::IsSubscribed(const ServiceInstance& key, event_t id) const {
  const Instance* instance = Find(key);
  if (instance == nullptr) return false;
  const auto requested = instance->requested.find(id);
  return std::any_of(instance->subscribed.begin(), instance->subscribed.end(), [&](const auto& group) {
    if (group.second.count(id) != 0) return true;
    return group.second.count(ANY_EVENT) != 0 && requested != instance->requested.end() &&
           requested->second.eventgroups.count(group.first) != 0;
  });
}

std::vector<event_t> UsedEvents::Resolve(const Instance& instance, eventgroup_t eventgroup, event_t id) {
  if (id != ANY_EVENT) return {id};
  std::vector<event_t> ids;
  for (const auto& [event, requested] : instance.requested) {
    if (requested.eventgroups.count(eventgroup) != 0) ids.push_back(event);
  }
  return ids;
}

std::vector<event_t> UsedEvents::SetStatus(const ServiceInstance& key, eventgroup_t eventgroup, bool accepted) {
  std::vector<event_t> changed;
  const auto found = instances_.find(key);
  if (found == instances_.end()) return changed;
  const auto group = found->second.subscribed.find(eventgroup);
  if (group == found->second.subscribed.end()) return changed;
  for (auto& [id, is_accepted] : group->second) {
    if (accepted && is_accepted) continue;
    is_accepted = accepted;
    for (const event_t event : Resolve(found->second, eventgroup, id)) changed.push_back(event);
  }
  return changed;
}

void UsedEvents::Lose(const ServiceInstance& key) {
  const auto found = instances_.find(key);
  if (found == instances_.end()) return;
  for (auto& [id, requested] : found->second.requested) requested.last.reset();
  for (auto& [eventgroup, events] : found->second.subscribed) {
    for (auto& [id, is_accepted] : events) is_accepted = false;
  }
}

void UsedEvents::Keep(const ServiceInstance& key, event_t id, std::shared_ptr<message> notification) {
  const auto found = instances_.find(key);
  if (found == instances_.end()) return;
  const auto requested = found->second.requested.find(id);
  if (requested != found->second.requested.end() && requested->second.type == event_type_e::ET_FIELD) {
    requested->second.last = std::move(notification);
  }
}

std::vector<std::shared_ptr<message>> UsedEvents::Kept(const ServiceInstance& key, eventgroup_t eventgroup,
                                                       event_t id) const {
  std::vector<std::shared_ptr<message>> kept;
  const Instance* instance = Find(key);
  if (instance == nullptr) return kept;
  for (const event_t event : Resolve(*instance, eventgroup, id)) {
    const auto requested = instance->requested.find(event);
    if (requested != instance->requested.end() && requested->second.last) kept.push_back(requested->second.last);
  }
  return kept;
}

}  // namespace vsomeip_v3::embedded
