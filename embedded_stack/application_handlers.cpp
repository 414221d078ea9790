// The part of the application that registers handlers and queues their calls.
#include "embedded_stack/application_impl.h"

namespace vsomeip_v3::embedded {

bool ApplicationImpl::PushTask(Dispatcher::Task task) {
  const std::uint32_t requester = task.requester;
  const bool has_room = dispatcher_->Push(std::move(task));
  if (!has_room) {
    const std::string detail = requester != 0 ? "requests of " + AddressText(requester) : "a handler blocks";
    drops_.Count(Drop::kQueueFull, detail, std::chrono::steady_clock::now());
  }
  return has_room;
}

void ApplicationImpl::PushMessage(std::shared_ptr<message> message, std::uint32_t requester) {
  auto slot = handlers_.FindMessage(message->get_service(), message->get_instance(), message->get_method());
  if (!slot) return;
  const std::size_t bytes = kHeaderSize + message->get_length();
  PushTask({std::move(slot), std::move(message), nullptr, bytes, requester});
}

bool ApplicationImpl::PushStatus(const ServiceInstance& key, eventgroup_t eventgroup, event_t event, bool accepted) {
  constexpr std::uint16_t kRejected = 7;
  const std::uint16_t status = accepted ? 0 : kRejected;
  bool is_told = true;
  for (const auto& slot : handlers_.FindStatus({key.first, key.second, eventgroup, event}, accepted)) {
    is_told &= Push([slot, key, eventgroup, event, status] {
      if (*slot->registered) slot->call(key.first, key.second, eventgroup, event, status);
    });
  }
  return is_told;
}

void ApplicationImpl::TellStatus(const DiscoveryOutput::SubscriptionStatus& status) {
  const ServiceInstance key{status.service, status.instance};
  if (status.accepted && !requests_->IsAccepted(key, status.eventgroup))
    return;  // the service went in the same message
  bool is_told = true;
  for (const event_t event : used_events_.SetStatus(key, status.eventgroup, status.accepted)) {
    is_told &= PushStatus(key, status.eventgroup, event, status.accepted);
  }
  if (is_told) return;
  used_events_.SetStatus(key, status.eventgroup, false);  // the next acknowledgement is new again
  requests_->ForgetAnswer(key, status.eventgroup);
}

void ApplicationImpl::TellAvailability(const DiscoveryOutput::Availability& change) {
  if (!change.available) used_events_.Lose({change.service, change.instance});
  for (const auto& slot : handlers_.ChangeAvailability(change)) {
    const bool is_told = Push([slot, change] {
      if (*slot->registered) slot->call(change.service, change.instance, change.available);
    });
    if (is_told) continue;
    handlers_.NotTold(slot, change);
    is_availability_untold_ = true;
  }
}

// What has changed meanwhile, and changed back, is not told.
void ApplicationImpl::TellAvailabilityAgain() {
  is_availability_untold_ = false;
  for (const ServiceInstance& key : handlers_.ToldAvailable()) {
    if (requests_->Find(key) == nullptr) TellAvailability({key.first, key.second, ANY_MAJOR, ANY_MINOR, false});
  }
  for (const auto& [key, found] : requests_->Available()) {
    TellAvailability({key.first, key.second, found.major, found.minor, true});
  }
}

void ApplicationImpl::get_offered_services_async(offer_type_e type, const offered_services_handler_t& handler) {
  const Lock lock(mutex_);
  if (state_ == State::kNew || handler == nullptr) return;
  const auto offered = type == offer_type_e::OT_LOCAL ? std::vector<ServiceInstance>() : offers_->All();
  Push([handler, offered] { handler(offered); });
}

void ApplicationImpl::register_state_handler(const state_handler_t& handler) {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  handlers_.SetState(handler);
  retired = handlers_.TakeRetired();
}

void ApplicationImpl::unregister_state_handler() { register_state_handler(nullptr); }

void ApplicationImpl::register_message_handler(service_t service, instance_t instance, method_t method,
                                               const message_handler_t& handler) {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  handlers_.SetMessage({service, instance, method}, handler);
  retired = handlers_.TakeRetired();
}

void ApplicationImpl::unregister_message_handler(service_t service, instance_t instance, method_t method) {
  register_message_handler(service, instance, method, nullptr);
}

void ApplicationImpl::register_availability_handler(service_t service, instance_t instance,
                                                    const availability_handler_t& handler, major_version_t major,
                                                    minor_version_t minor) {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  const Handlers::AvailabilityKey key{service, instance, major, minor};
  std::vector<DiscoveryOutput::Availability> present;
  if (requests_) {
    for (const auto& [id, found] : requests_->Available()) {
      const DiscoveryOutput::Availability candidate{id.first, id.second, found.major, found.minor, true};
      if (Handlers::Concerns(key, candidate)) present.push_back(candidate);
    }
  }
  const auto slot = handlers_.SetAvailability(key, handler, present);
  retired = handlers_.TakeRetired();
  if (!slot) return;
  const bool is_wildcard = service == ANY_SERVICE || instance == ANY_INSTANCE;
  if (present.empty() && !is_wildcard) present.push_back({service, instance, major, minor, false});
  for (const auto& state : present) {
    Push([slot, state] {
      if (*slot->registered) slot->call(state.service, state.instance, state.available);
    });
  }
}

void ApplicationImpl::unregister_availability_handler(service_t service, instance_t instance, major_version_t major,
                                                      minor_version_t minor) {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  handlers_.RemoveAvailability({service, instance, major, minor});
  retired = handlers_.TakeRetired();
}

void ApplicationImpl::register_subscription_status_handler(service_t service, instance_t instance,
                                                           eventgroup_t eventgroup, event_t event,
                                                           subscription_status_handler_t handler, bool is_selective) {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  handlers_.SetStatus({service, instance, eventgroup, event}, handler, is_selective);
  retired = handlers_.TakeRetired();
}

void ApplicationImpl::unregister_subscription_status_handler(service_t service, instance_t instance,
                                                             eventgroup_t eventgroup, event_t event) {
  register_subscription_status_handler(service, instance, eventgroup, event, nullptr, false);
}

void ApplicationImpl::clear_all_handler() {
  Handlers::Retired retired;  // goes after the lock
  const Lock lock(mutex_);
  handlers_.Clear();
  retired = handlers_.TakeRetired();
}

}  // namespace vsomeip_v3::embedded
