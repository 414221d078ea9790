#include "ara/com/internal/vsomeip/proxy/event_subscription.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "platform/include/connection.h"
#include "platform/include/service_availability.h"

namespace ara::com::internal::vsomeip::proxy {

namespace {

using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;  // service, instance, event

/// All subscriptions of the process. The mutex also serialises their beginnings and ends at the stack, so that the end
/// of one never undoes the beginning of the next.
struct Directory {
  std::mutex mutex;
  std::map<Key, std::shared_ptr<EventSubscription>> subscriptions;
};

// Never destroyed: a proxy with static lifetime may unsubscribe after everything else is gone.
Directory& GetDirectory() {
  static auto* const directory = new Directory;
  return *directory;
}

Key KeyOf(const EventIdentity& event) { return {event.service, event.instance, event.event}; }

}  // namespace

EventSubscription::Membership EventSubscription::Join(const EventIdentity& event,
                                                      const std::shared_ptr<EventSubscriber>& subscriber) {
  Directory& directory = GetDirectory();
  const std::lock_guard<std::mutex> lock(directory.mutex);
  auto& subscription = directory.subscriptions[KeyOf(event)];
  if (subscription != nullptr) {
    subscription->Add(subscriber);
    return {subscription, false};
  }
  try {
    subscription.reset(new EventSubscription(event));
    subscription->Add(subscriber);
    subscription->Begin();
    return {subscription, true};
  } catch (...) {
    directory.subscriptions.erase(KeyOf(event));
    throw;
  }
}

void EventSubscription::Leave(const EventSubscriber& subscriber) {
  Directory& directory = GetDirectory();
  const std::lock_guard<std::mutex> lock(directory.mutex);
  if (Remove(subscriber)) {
    End();
    directory.subscriptions.erase(KeyOf(event_));
  }
}

void EventSubscription::Begin() {
  const auto application = runtime::VSomeIPConnection::instance_.Application();
  const std::weak_ptr<EventSubscription> weak = weak_from_this();
  const auto onMessage = [weak](const std::shared_ptr<::vsomeip::message>& message) {
    if (const auto self = weak.lock()) {
      self->OnMessage(message);
    }
  };
  // The stack looks for the handler when a notification arrives, and the first one, the field's value as it stands, may
  // be here before subscribe() has returned. So the handler must be there already; where its registration belongs,
  // after the subscription, it is repeated, which changes nothing.
  application->register_message_handler(event_.service, event_.instance, event_.event, onMessage);
  application->request_event(event_.service, event_.instance, event_.event, event_.eventgroups, event_.type);
  application->register_subscription_status_handler(event_.service, event_.instance, event_.eventgroup, event_.event,
                                                    [weak](auto, auto, auto, auto, std::uint16_t status) {
                                                      if (const auto self = weak.lock()) {
                                                        self->OnStatus(status);
                                                      }
                                                    });
  application->subscribe(event_.service, event_.instance, event_.eventgroup, event_.major, event_.event);
  application->register_message_handler(event_.service, event_.instance, event_.event, onMessage);
  if (common::registerAvailabilityHandler != nullptr) {
    availability_token_ = common::registerAvailabilityHandler(
        {event_.service, event_.instance, event_.major, event_.minor}, [weak](bool available) {
          if (const auto self = weak.lock()) {
            self->OnAvailability(available);
          }
        });
  }
}

void EventSubscription::End() {
  const auto application = runtime::VSomeIPConnection::instance_.Application();
  if (common::unregisterAvailabilityHandler != nullptr) {
    common::unregisterAvailabilityHandler(availability_token_);
  }
  application->unregister_subscription_status_handler(event_.service, event_.instance, event_.eventgroup, event_.event);
  application->unsubscribe(event_.service, event_.instance, event_.eventgroup);
  application->release_event(event_.service, event_.instance, event_.event);
  application->unregister_message_handler(event_.service, event_.instance, event_.event);
}

void EventSubscription::Add(const std::shared_ptr<EventSubscriber>& subscriber) {
  const std::lock_guard<std::mutex> lock(mutex_);
  subscribers_.push_back(subscriber);
  subscriber->StoreState(state_);
  if (latest_ != nullptr) {
    subscriber->StoreMessage(latest_);
  }
}

// Whether the last one went.
bool EventSubscription::Remove(const EventSubscriber& subscriber) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const bool hadAny = !subscribers_.empty();
  subscribers_.erase(std::remove_if(subscribers_.begin(), subscribers_.end(),
                                    [&](const auto& weak) {
                                      const auto other = weak.lock();
                                      return other == nullptr || other.get() == &subscriber;
                                    }),
                     subscribers_.end());
  return hadAny && subscribers_.empty();
}

EventSubscription::Subscribers EventSubscription::LiveSubscribers() const {
  Subscribers live;
  for (const auto& weak : subscribers_) {
    if (auto subscriber = weak.lock()) {
      live.push_back(std::move(subscriber));
    }
  }
  return live;
}

void EventSubscription::OnMessage(const std::shared_ptr<::vsomeip::message>& message) {
  Subscribers receivers;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (auto& subscriber : LiveSubscribers()) {
      if (subscriber->StoreMessage(message)) {
        latest_ = message;
        receivers.push_back(std::move(subscriber));
      }
    }
  }
  for (const auto& subscriber : receivers) {
    subscriber->ReportMessage();
  }
}

void EventSubscription::OnStatus(std::uint16_t status) {
  SpreadState(status == 0 ? SubscriptionState::kSubscribed : SubscriptionState::kNotSubscribed);
}

void EventSubscription::OnAvailability(bool available) {
  if (!available) {
    SpreadState(SubscriptionState::kSubscriptionPending);  // the stack subscribes again when the provider returns
  }
}

void EventSubscription::SpreadState(SubscriptionState state) {
  Subscribers receivers;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (state == state_) {
      return;
    }
    state_ = state;
    if (state != SubscriptionState::kSubscribed) {
      latest_ = nullptr;
    }
    receivers = LiveSubscribers();
    for (const auto& subscriber : receivers) {
      subscriber->StoreState(state);
    }
  }
  for (const auto& subscriber : receivers) {
    subscriber->ReportState(state);
  }
}

}  // namespace ara::com::internal::vsomeip::proxy
