#include "embedded_stack/handlers.h"

#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {

// Puts a handler in the place of the former one, or none if it is null.
template <typename Function>
void Handlers::Replace(SlotPointer<Function>& slot, const Function& handler) {
  typename Slot<Function>::Registered registered;
  if (slot) {
    registered = slot->registered;
    retired_.push_back(std::move(slot));
  } else {
    registered = std::make_shared<std::atomic<bool>>(true);
  }
  if (handler) {
    slot = std::make_shared<Slot<Function>>(handler, std::move(registered));
  } else {
    *registered = false;
    slot = nullptr;
  }
}

void Handlers::SetState(const state_handler_t& handler) { Replace(state_, handler); }

void Handlers::SetMessage(const MessageKey& key, const message_handler_t& handler) {
  SlotPointer<message_handler_t>& slot = messages_[key];
  Replace(slot, handler);
  if (!slot) messages_.erase(key);
}

SlotPointer<message_handler_t> Handlers::FindMessage(service_t service, instance_t instance, method_t method) const {
  for (const service_t s : {service, ANY_SERVICE}) {
    for (const instance_t i : {instance, ANY_INSTANCE}) {
      for (const method_t m : {method, ANY_METHOD}) {
        const auto found = messages_.find({s, i, m});
        if (found != messages_.end()) return found->second;
      }
    }
  }
  return nullptr;
}

bool Handlers::Concerns(const AvailabilityKey& key, const Available& change) {
  const auto& [service, instance, major, minor] = key;
  return (service == ANY_SERVICE || service == change.service) &&
         (instance == ANY_INSTANCE || instance == change.instance) && (major == ANY_MAJOR || major == change.major) &&
         (minor == ANY_MINOR || minor <= change.minor);
}

SlotPointer<availability_handler_t> Handlers::SetAvailability(const AvailabilityKey& key,
                                                              const availability_handler_t& handler,
                                                              const std::vector<Available>& present) {
  RemoveAvailability(key);
  if (!handler) return nullptr;
  AvailabilityEntry& entry = availability_[key];
  Replace(entry.slot, handler);
  for (const Available& instance : present) entry.available.insert({instance.service, instance.instance});
  return entry.slot;
}

void Handlers::RemoveAvailability(const AvailabilityKey& key) {
  const auto found = availability_.find(key);
  if (found == availability_.end()) return;
  Replace(found->second.slot, availability_handler_t());
  availability_.erase(found);
}

std::vector<SlotPointer<availability_handler_t>> Handlers::ChangeAvailability(const Available& change) {
  std::vector<SlotPointer<availability_handler_t>> concerned;
  const ServiceInstance key{change.service, change.instance};
  for (auto& [handler_key, entry] : availability_) {
    if (!Concerns(handler_key, change)) continue;
    const bool is_change = change.available ? entry.available.insert(key).second : entry.available.erase(key) != 0;
    if (is_change) concerned.push_back(entry.slot);
  }
  return concerned;
}

void Handlers::NotTold(const SlotPointer<availability_handler_t>& slot, const Available& change) {
  const ServiceInstance key{change.service, change.instance};
  for (auto& [handler_key, entry] : availability_) {
    if (entry.slot != slot) continue;
    if (change.available) {
      entry.available.erase(key);
    } else {
      entry.available.insert(key);
    }
  }
}

std::set<ServiceInstance> Handlers::ToldAvailable() const {
  std::set<ServiceInstance> all;
  for (const auto& [key, entry] : availability_) all.insert(entry.available.begin(), entry.available.end());
  return all;
}

void Handlers::SetStatus(const StatusKey& key, const subscription_status_handler_t& handler, bool is_selective) {
  StatusEntry& entry = status_[key];
  Replace(entry.slot, handler);
  entry.is_selective = is_selective;
  if (!entry.slot) status_.erase(key);
}

std::vector<SlotPointer<subscription_status_handler_t>> Handlers::FindStatus(const StatusKey& key,
                                                                             bool accepted) const {
  std::vector<SlotPointer<subscription_status_handler_t>> found;
  const auto& [service, instance, eventgroup, event] = key;
  for (const auto& [handler_key, entry] : status_) {
    const auto& [s, i, g, e] = handler_key;
    const bool matches = (s == ANY_SERVICE || s == service) && (i == ANY_INSTANCE || i == instance) &&
                         (g == ANY_EVENTGROUP || g == eventgroup) && (e == ANY_EVENT || e == event);
    if (matches && (accepted || entry.is_selective)) found.push_back(entry.slot);
  }
  return found;
}

void Handlers::ForgetAvailability(const ServiceInstance& key) {
  for (auto& [handler_key, entry] : availability_) entry.available.erase(key);
}

void Handlers::ForgetAvailability() {
  for (auto& [handler_key, entry] : availability_) entry.available.clear();
}

void Handlers::Clear() {
  Replace(state_, state_handler_t());
  for (auto& [key, slot] : messages_) Replace(slot, message_handler_t());
  for (auto& [key, entry] : availability_) Replace(entry.slot, availability_handler_t());
  for (auto& [key, entry] : status_) Replace(entry.slot, subscription_status_handler_t());
  messages_.clear();
  availability_.clear();
  status_.clear();
}

}  // namespace vsomeip_v3::embedded
