// The part of the application that offers events and sends their values.
#include "embedded_stack/application_impl.h"

namespace vsomeip_v3::embedded {

namespace {
std::string NameOf(const ServiceInstance& key, event_t event) {
  return Hex(key.first) + "." + Hex(key.second) + "." + Hex(event);
}
}  // namespace

void ApplicationImpl::offer_event(service_t service, instance_t instance, event_t notifier,
                                  const std::set<eventgroup_t>& eventgroups, event_type_e type,
                                  std::chrono::milliseconds cycle, bool change_resets_cycle, bool update_on_change,
                                  const epsilon_change_func_t& epsilon_change_func,
                                  reliability_type_e /*reliability*/) {
  if (epsilon_change_func) log_->Warning("offer_event(): the function that compares values has no effect");
  const Lock lock(mutex_);
  OfferedEvents::Event event;
  event.eventgroups = eventgroups;
  event.type = type;
  event.cycle = cycle;
  event.change_resets_cycle = change_resets_cycle;
  event.update_on_change = update_on_change;
  offered_events_.Offer({service, instance}, notifier, std::move(event));
  // Whoever was rejected because the eventgroup was missing tries again with the next offer.
  if (offers_) offers_->AnnounceAgain({service, instance}, std::chrono::steady_clock::now());
  Wake();
}

void ApplicationImpl::stop_offer_event(service_t service, instance_t instance, event_t event) {
  const Lock lock(mutex_);
  offered_events_.StopOffer({service, instance}, event);
}

// The interface declares it const, although a field changes its value: the tables are not part of what a user sees of
// the application.
void ApplicationImpl::notify(service_t service, instance_t instance, event_t event, std::shared_ptr<payload> payload,
                             bool force) const {
  const_cast<ApplicationImpl*>(this)->Notify({service, instance}, event, std::move(payload), force);
}

void ApplicationImpl::Notify(const ServiceInstance& key, event_t event, std::shared_ptr<payload> payload, bool force) {
  if (!payload) {
    log_->Error(NameOf(key, event), ": no payload: nothing is sent");
    return;
  }
  RequireTransferable(*payload);
  SharedBytes bytes = Keep(payload);  // a copy, if the caller keeps the payload: not under the lock
  const Lock lock(mutex_);
  const OfferedEvents::Event* found = offered_events_.Find(key, event);
  if (found == nullptr) {
    log_->Warning(NameOf(key, event), " is not offered: notification dropped");
    return;
  }
  const TimePoint now = std::chrono::steady_clock::now();
  const bool is_cyclic = found->cycle.count() > 0;
  if (offered_events_.SetValue(key, event, std::move(bytes), force, now) && offers_) {
    SendNotification(key, event, offers_->Subscribers(key, found->eventgroups, now));
  }
  if (is_cyclic) Wake();
}

void ApplicationImpl::SendNotification(const ServiceInstance& key, event_t event, const std::set<Endpoint>& targets) {
  const Offers::Offer* offer = offers_->Find(key);
  const OfferedEvents::Event* found = offered_events_.Find(key, event);
  if (targets.empty() || offer == nullptr || found == nullptr || !found->value) return;
  MessageHeader header;
  header.service = key.first;
  header.method = event;
  header.session = NextSession();
  header.interface_version = offer->major;
  header.type = static_cast<std::uint8_t>(message_type_e::MT_NOTIFICATION);
  for (const Endpoint& target : targets) {
    Transmit({offer->socket, target}, header, *found->value, [found] { return found->value; });
  }
}

void ApplicationImpl::SendInitialValues(const DiscoveryOutput::NewSubscriber& subscriber) {
  const ServiceInstance key{subscriber.service, subscriber.instance};
  for (const event_t field : offered_events_.FieldsOf(key, subscriber.eventgroup)) {
    SendNotification(key, field, {subscriber.subscriber});
  }
}

}  // namespace vsomeip_v3::embedded
