#pragma once

#include <cstddef>
#include <functional>
#include <limits>

#include "ara/com/sample_ptr.h"
#include "ara/com/subscription_state.h"
#include "core_types/result.h"
#include "platform/include/e2e_status_handler.h"

namespace ara::com::internal::proxy {

namespace bits {

/// What an event offers whatever its type. All operations may be called from any thread, and from any handler. A
/// handler may destroy its own proxy, on whatever thread it runs. What a receive or state handler throws is logged.
class EventBase {
 public:
  virtual ~EventBase() = default;

  /// Asks the provider for notifications and keeps up to `cacheSize` (at least 1) of them, and as many samples, until
  /// they are fetched or given back. The newest data wins: a full cache drops its oldest notification. Where another
  /// proxy of the process follows the event already, the latest value waits as soon as this returns; the receive
  /// handler is told of it later, on its own thread. Errors are logged, not thrown. The subscription is restored by
  /// itself after the provider was away. Calling it again asks again, and makes a cache of the new size.
  virtual void Subscribe(std::size_t cacheSize) = 0;
  /// Ends the subscription and drops what was not fetched. Samples that are held stay valid. Takes the receive handler
  /// back.
  virtual void Unsubscribe() = 0;
  virtual SubscriptionState GetSubscriptionState() const = 0;
  virtual bool IsSubscribed() const = 0;
  /// How many further samples can be held.
  virtual std::size_t GetFreeSampleCount() const = 0;

  /// `handler` is called after each notification that was put into the cache, on a thread of the SOME/IP stack. Its
  /// calls never overlap, not even with themselves: while one runs, further ones wait, but no thread waits for them.
  /// One that is slower than its notifications is called for those that wait, not for those that the cache has dropped.
  virtual void SetReceiveHandler(std::function<void()> handler) = 0;
  virtual void UnsetReceiveHandler() = 0;
  /// `handler` is called with each answer that the provider gives to a subscription, also when it equals the one
  /// before, and with each change that has another reason, also from inside Subscribe and Unsubscribe. Its calls never
  /// overlap and come in the order of the changes.
  virtual void SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler) = 0;
  virtual void UnsetSubscriptionStateChangeHandler() = 0;

  /// The latest end-to-end check: renewed by each message that GetNewSamples takes, and by finding none.
  virtual e2exf::CheckResult DoCheckResult() const = 0;
};

}  // namespace bits

/// An event, or the notifier of a field, with values of type T.
template <typename T>
class Event : public bits::EventBase {
 public:
  using SampleType = T;

  /// Decodes up to `maxNumberOfSamples` waiting notifications, oldest first, and hands each to `handler`, on the
  /// calling thread. Yields how many were delivered. A notification that cannot be decoded is logged and passed over.
  /// When the application holds so many samples that none could be delivered, the error is ComErrc::kMaxSamplesExceeded
  /// and the notifications stay.
  virtual ara::core::Result<std::size_t> GetNewSamples(
      std::function<void(SamplePtr<const T>)> handler,
      std::size_t maxNumberOfSamples = std::numeric_limits<std::size_t>::max()) = 0;
};

}  // namespace ara::com::internal::proxy
