#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <set>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/vsomeip/proxy/handler_calls.h"
#include "ara/com/sample_ptr.h"
#include "ara/com/subscription_state.h"
#include "platform/include/e2e_status_handler.h"

namespace ara::com::internal::vsomeip::proxy {

/// Which event of which service instance, and what the stack is told about it.
struct EventIdentity {
  std::uint16_t service;
  std::uint16_t instance;
  std::uint8_t major;
  std::uint32_t minor;
  std::uint16_t event;
  std::uint16_t eventgroup;
  std::set<::vsomeip::eventgroup_t> eventgroups;
};

/// One event object's subscription: all of it that depends on no record type. Owns the state, the queue of
/// notifications, the application's handlers and the end-to-end check.
///
/// The stack keeps one handler and one subscription per event in a process. What the event objects of several proxies
/// share for that reason is a SharedEvent, which also holds the one lock. Every operation may be called from any
/// thread, and from any handler; a handler may destroy the event object, also inside Subscribe() and Unsubscribe().
class EventSubscription final : public std::enable_shared_from_this<EventSubscription> {
 public:
  using Message = std::shared_ptr<::vsomeip::message>;

  /// Not subscribed. Whoever opens one closes it.
  static std::shared_ptr<EventSubscription> Open(const EventIdentity& event);
  /// Stops the handlers and ends the subscription.
  void Close();

  EventSubscription(const EventSubscription&) = delete;
  EventSubscription& operator=(const EventSubscription&) = delete;

  /// Subscribes, or subscribes once more: the state becomes pending, and what the stack answers is the next one. From
  /// now on `slots` is the sample cache, of `cacheSize` slots. `isField` is the kind of event that is requested. Throws
  /// what the stack throws; the event is not subscribed then.
  void Subscribe(std::size_t cacheSize, std::shared_ptr<internal::proxy::SampleSlots> slots, bool isField);
  void Unsubscribe();

  /// Takes both handlers back, for good, and waits until neither runs on another thread.
  void StopHandlers();
  void SetReceiveHandler(std::function<void()> handler);
  void SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler);

  SubscriptionState GetSubscriptionState() const;
  std::size_t GetFreeSampleCount() const;
  e2exf::CheckResult DoCheckResult() const;

  /// What there is to fetch: how many notifications wait, and the cache for their values. Where none waits, that is
  /// entered as the outcome of the end-to-end check.
  struct Waiting {
    std::size_t count;
    std::shared_ptr<internal::proxy::SampleSlots> slots;  // null before the first Subscribe()
  };
  Waiting GetWaiting();

  /// Takes the oldest notification, and enters its end-to-end check. The message is null when none waits.
  struct Taken {
    Message message;
    e2exf::ProfileCheckStatus status;
  };
  Taken TakeMessage();

  /// Whether a notification fits this event: its header the event, its client id 0.
  bool validateMessage(const ::vsomeip::message& message) const;

 private:
  class SharedEvent;

  explicit EventSubscription(std::shared_ptr<SharedEvent> event) : event_(std::move(event)) {}

  void Leave();
  // To be called with the shared event's mutex held:
  void DropSurplusMessages();
  void setSubscriptionState(SubscriptionState state);
  void EnterCheck(e2exf::ProfileCheckStatus status);

  const std::shared_ptr<SharedEvent> event_;

  // All that follows is guarded by the shared event's mutex.
  bool joined_ = false;  // takes part: from Subscribe() to Unsubscribe(), whatever the stack says meanwhile
  SubscriptionState state_ = SubscriptionState::kNotSubscribed;
  std::size_t cache_size_ = 0;
  std::shared_ptr<internal::proxy::SampleSlots> slots_;
  std::deque<Message> messages_;
  std::uint64_t dropped_messages_ = 0;
  bool is_value_unannounced_ = false;  // a value that was there when this joined waits, and nobody has been told
  e2exf::CheckResult check_result_;
  HandlerCalls<> receive_calls_;
  HandlerCalls<SubscriptionState> state_change_calls_;
};

}  // namespace ara::com::internal::vsomeip::proxy
