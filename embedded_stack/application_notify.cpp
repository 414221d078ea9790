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
  const Lock lock(mutex_);
  OfferedEvents::Event event;
  event.eventgroups = eventgroups;
  event.type = type;
  event.cycle = cycle;
  event.change_resets_cycle = change_resets_cycle;
  event.update_on_change = update_on_change;
  event.has_changed = epsilon_change_func;
  offered_events_.Offer({service, instance}, notifier, std::move(event));
  // Whoever was rejected because the eventgroup was missing tries again with the next offer.
  if (offers_) offers_->AnnounceAgain({service, instance}, std::chrono::steady_clock::now());
  Wake();
}

void ApplicationImpl::stop_offer_event(service_t service, instance_t instance, event_t event) {
  const Lock lock(mutex_);
  offered_events_.StopOffer({service, instance}, event);
}

// The interface declares the next two const, although a field changes its value: the tables are not part of what a
// user sees of the application.
void ApplicationImpl::notify(service_t service, instance_t instance, event_t event, std::shared_ptr<payload> payload,
                             bool force) const {
  const_cast<ApplicationImpl*>(this)->Notify({service, instance}, event, payload, force, nullptr);
}

void ApplicationImpl::notify_one(service_t service, instance_t instance, event_t event,
                                 std::shared_ptr<payload> payload, client_t client, bool force) const {
  const_cast<ApplicationImpl*>(this)->Notify({service, instance}, event, payload, force, &client);
}

void ApplicationImpl::Notify(const ServiceInstance& key, event_t event, const std::shared_ptr<payload>& payload,
                             bool force, const client_t* only) {
  if (!payload) {
    log_->Error(NameOf(key, event), ": no payload: nothing is sent");
    return;
  }
  RequireTransferable(*payload);
  const byte_t* const data = payload->get_data();
  const auto bytes = std::make_shared<const std::vector<std::uint8_t>>(data, data + payload->get_length());

  Lock lock(mutex_);
  const OfferedEvents::Event* found = offered_events_.Find(key, event);
  if (found != nullptr && found->has_changed && found->value && !force && found->type == event_type_e::ET_FIELD) {
    const epsilon_change_func_t has_changed = found->has_changed;
    const auto before = std::make_shared<PayloadImpl>(*found->value);
    lock.unlock();  // a function of the user
    if (!has_changed(before, payload)) return;
    lock.lock();
    found = offered_events_.Find(key, event);
  }
  if (found == nullptr) {
    log_->Warning(NameOf(key, event), " is not offered: notification dropped");
    return;
  }
  const TimePoint now = std::chrono::steady_clock::now();
  const bool is_cyclic = found->cycle.count() > 0;
  if (offered_events_.SetValue(key, event, bytes, force, now) && offers_) {
    std::set<Endpoint> targets = offers_->Subscribers(key, found->eventgroups, now);
    if (only != nullptr) {
      const auto client = clients_.find(*only);
      const bool is_subscribed = client != clients_.end() && targets.count(client->second) != 0;
      targets = is_subscribed ? std::set<Endpoint>{client->second} : std::set<Endpoint>{};
    }
    SendNotification(key, event, targets);
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
  for (const Endpoint& target : targets) Transmit(offer->socket, target, header, found->value);
}

void ApplicationImpl::SendInitialValues(const DiscoveryOutput::NewSubscriber& subscriber) {
  const ServiceInstance key{subscriber.service, subscriber.instance};
  for (const event_t field : offered_events_.FieldsOf(key, subscriber.eventgroup)) {
    SendNotification(key, field, {subscriber.subscriber});
  }
}

}  // namespace vsomeip_v3::embedded
