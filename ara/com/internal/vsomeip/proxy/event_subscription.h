#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/subscription_state.h"

namespace ara::com::internal::vsomeip::proxy {

/// What the stack is asked for when an event is subscribed.
struct EventIdentity {
  std::uint16_t service;
  std::uint16_t instance;
  std::uint8_t major;
  std::uint32_t minor;
  std::uint16_t event;
  std::uint16_t eventgroup;
  std::set<::vsomeip::eventgroup_t> eventgroups;
  ::vsomeip::event_type_e type;
};

/// One user of an event's subscription. Store operations are called with the subscription's lock held and must not call
/// into the application; Report operations are called without any lock.
class EventSubscriber {
 public:
  virtual ~EventSubscriber() = default;

  /// Takes a notification; false when it was refused.
  virtual bool StoreMessage(const std::shared_ptr<::vsomeip::message>& message) = 0;
  virtual void ReportMessage() = 0;
  virtual void StoreState(SubscriptionState state) = 0;
  virtual void ReportState(SubscriptionState state) = 0;
};

/// The process's one subscription of an event of a service instance. The stack keeps one handler and one subscription
/// per event, so several proxies of the same instance share them: the first to join subscribes, the last to leave
/// unsubscribes, and one that joins a subscription under way receives the state and the latest value at once.
class EventSubscription : public std::enable_shared_from_this<EventSubscription> {
 public:
  struct Membership {
    std::shared_ptr<EventSubscription> subscription;
    bool
        isFirst;  ///< when false, the state and the latest value, if any, have been stored: the subscriber reports them
  };

  /// Adds a subscriber, which is held weakly. What the stack throws passes; nothing is subscribed then.
  static Membership Join(const EventIdentity& event, const std::shared_ptr<EventSubscriber>& subscriber);
  /// Removes a subscriber. A call to it that is under way on another thread may still end after that.
  void Leave(const EventSubscriber& subscriber);

  EventSubscription(const EventSubscription&) = delete;
  EventSubscription& operator=(const EventSubscription&) = delete;

 private:
  using Subscribers = std::vector<std::shared_ptr<EventSubscriber>>;

  explicit EventSubscription(const EventIdentity& event) : event_(event) {}

  void Begin();
  void End();
  void Add(const std::shared_ptr<EventSubscriber>& subscriber);
  bool Remove(const EventSubscriber& subscriber);

  void OnMessage(const std::shared_ptr<::vsomeip::message>& message);
  void OnStatus(std::uint16_t status);
  void OnAvailability(bool available);
  void SpreadState(SubscriptionState state);
  Subscribers LiveSubscribers() const;

  const EventIdentity event_;
  std::uint64_t availability_token_ = 0;

  std::mutex mutex_;  // guards the members below; taken before a subscriber's own lock
  std::vector<std::weak_ptr<EventSubscriber>> subscribers_;
  SubscriptionState state_ = SubscriptionState::kSubscriptionPending;
  std::shared_ptr<::vsomeip::message> latest_;  // null while there is none, or the provider is away
};

}  // namespace ara::com::internal::vsomeip::proxy
