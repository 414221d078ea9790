#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/proxy/event_data_container.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/proxy/event_subscription.h"
#include "ara/com/internal/vsomeip/proxy/response_decoding.h"
#include "core_types/com_error_domain.h"
#include "core_types/result.h"
#include "core_types/running_calls.h"
#include "platform/include/e2e_status_handler.h"
#include "platform/include/message_check.h"
#include "serialization/deserializer.h"

namespace ara::com::internal::vsomeip::proxy {

inline constexpr const char* kEventSource = "proxy/vsomeip_event_impl";

/// The state of one event object: the notifications that wait, the sample cache, the handlers. Messages and states come
/// in on the stack's threads, everything else on the application's.
template <typename Descriptor, typename T>
class EventState final : public EventSubscriber, public std::enable_shared_from_this<EventState<Descriptor, T>> {
 public:
  explicit EventState(std::uint16_t instance) noexcept : instance_(instance) {}

  /// Subscribes, or changes the cache size of a subscription.
  void Subscribe(std::size_t cacheSize, bool isField) {
    if (cacheSize == 0) {
      throw std::invalid_argument("cache_size must be at least 1");
    }
    {
      const std::lock_guard<std::mutex> subscribing(subscribe_mutex_);
      PrepareCache(cacheSize);
      if (subscription_ != nullptr) {
        return;
      }
    }
    setSubscriptionState(SubscriptionState::kSubscriptionPending);
    if (JoinSubscription(isField)) {
      const SubscriptionState state = GetSubscriptionState();
      if (state != SubscriptionState::kSubscriptionPending) {
        ReportState(state);
      }
      if (HasMessages()) {
        ReportMessage();
      }
    }
  }

  void Unsubscribe() {
    SetReceiveHandler(nullptr);
    {
      const std::lock_guard<std::mutex> subscribing(subscribe_mutex_);
      if (subscription_ != nullptr) {
        subscription_->Leave(*this);
        subscription_ = nullptr;
      }
      StoreState(SubscriptionState::kNotSubscribed);
    }
    ReportState(SubscriptionState::kNotSubscribed);
    const std::lock_guard<std::mutex> lock(message_mutex_);
    if (subscription_state_ == SubscriptionState::kNotSubscribed) {  // the handler may have subscribed again
      messages_.clear();
    }
  }

  void StopHandlers() {
    SetSubscriptionStateChangeHandler(nullptr);
    SetReceiveHandler(nullptr);
    running_.WaitForOtherThreads();
  }

  SubscriptionState GetSubscriptionState() const {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    return subscription_state_;
  }
  std::size_t GetFreeSampleCount() const {
    const auto samples = Samples();
    return samples == nullptr ? 0 : samples->GetFreeSampleCount();
  }
  e2exf::CheckResult DoCheckResult() const {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    return check_result_;
  }

  void SetReceiveHandler(std::function<void()> handler) {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    receive_handler_.swap(handler);
  }
  void SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler) {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    state_change_handler_.swap(handler);
  }

  ara::core::Result<std::size_t> GetNewSamples(const std::function<void(SamplePtr<const T>)>& handler,
                                               std::size_t maxNumberOfSamples);

  bool validateMessage(const ::vsomeip::message& message) const;

  bool StoreMessage(const std::shared_ptr<::vsomeip::message>& message) override;
  void ReportMessage() override;
  void StoreState(SubscriptionState state) override {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    subscription_state_ = state;
  }
  void ReportState(SubscriptionState state) override;

 private:
  using SampleCache = internal::proxy::EventDataContainer<T>;
  using Service = typename Descriptor::Service;

  EventIdentity Identity(bool isField) const {
    return {Service::service_id,
            instance_,
            Service::major_version,
            Service::minor_version,
            Descriptor::event_id,
            Descriptor::event_groups[0],
            {std::begin(Descriptor::event_groups), std::end(Descriptor::event_groups)},
            isField ? ::vsomeip::event_type_e::ET_FIELD : ::vsomeip::event_type_e::ET_EVENT};
  }

  // A new cache of the given size; with the subscribe mutex held.
  void PrepareCache(std::size_t cacheSize) {
    {
      const std::lock_guard<std::mutex> lock(sample_mutex_);
      samples_ = std::make_shared<SampleCache>(cacheSize);
    }
    const std::lock_guard<std::mutex> lock(message_mutex_);
    cache_size_ = cacheSize;
    DropSurplusMessages(cacheSize);
  }

  // Whether a subscription under way was joined, whose state and latest value are to be reported.
  bool JoinSubscription(bool isField) {
    const std::lock_guard<std::mutex> subscribing(subscribe_mutex_);
    if (subscription_ != nullptr || GetSubscriptionState() != SubscriptionState::kSubscriptionPending) {
      return false;  // the state-change handler, called without a lock, has unsubscribed, or subscribed itself
    }
    try {
      const auto membership = EventSubscription::Join(Identity(isField), this->shared_from_this());
      subscription_ = membership.subscription;
      return !membership.isFirst;
    } catch (...) {
      StoreState(SubscriptionState::kNotSubscribed);
      throw;
    }
  }

  bool HasMessages() const {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    return !messages_.empty();
  }

  void setSubscriptionState(SubscriptionState state) {
    StoreState(state);
    ReportState(state);
  }

  std::shared_ptr<SampleCache> Samples() const {
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    return samples_;
  }

  // With the message mutex held: the newest data wins over unread old data.
  void DropSurplusMessages(std::size_t limit) {
    while (messages_.size() > limit) {
      messages_.pop_front();
      ++dropped_messages_;
    }
  }

  // Takes the oldest message and enters its end-to-end check. Null when none waits.
  std::shared_ptr<::vsomeip::message> TakeMessage(e2exf::ProfileCheckStatus& status) {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    if (messages_.empty()) {
      return nullptr;
    }
    auto message = std::move(messages_.front());
    messages_.pop_front();
    status = message->is_valid_crc() ? e2exf::ProfileCheckStatus::kOk : e2exf::ProfileCheckStatus::kError;
    EnterCheck(status);
    return message;
  }

  // Absent, and logged, where the payload cannot be decoded.
  static std::optional<T> Decode(const ::vsomeip::message& message) {
    try {
      const detail::PayloadView payload(message);
      return common::DeserializeFieldValue<T>(payload.Data(), payload.Size());
    } catch (const std::exception& error) {
      common::LogWarning(kEventSource, "GetNewSamples", __LINE__)
          << "(Exception : proxy/vsomeip_event_impl.h) GetNewSamples() deserializer error : " << error.what();
      return std::nullopt;
    }
  }

  // With the message mutex held.
  void EnterCheck(e2exf::ProfileCheckStatus status) {
    check_result_ =
        e2exf::StatusHandler::HandleCheckStatus(Service::service_id, instance_, Descriptor::event_id, status);
  }

  const std::uint16_t instance_;

  std::mutex subscribe_mutex_;  // guards subscription_; taken before the others
  std::shared_ptr<EventSubscription> subscription_;

  mutable std::mutex sample_mutex_;  // guards the pointer; the cache guards its slots
  std::shared_ptr<SampleCache> samples_;

  mutable std::mutex message_mutex_;  // guards the members below; never held across a call into the application
  std::deque<std::shared_ptr<::vsomeip::message>> messages_;
  std::size_t cache_size_ = 0;
  std::uint64_t dropped_messages_ = 0;
  SubscriptionState subscription_state_ = SubscriptionState::kNotSubscribed;
  std::function<void()> receive_handler_;
  std::function<void(SubscriptionState)> state_change_handler_;
  e2exf::CheckResult check_result_;

  std::recursive_mutex handler_call_mutex_;  // held while the receive handler runs, so that its calls never overlap
  ara::core::internal::RunningCalls running_;
};

template <typename Descriptor, typename T>
bool EventState<Descriptor, T>::validateMessage(const ::vsomeip::message& message) const {
  const bool valid = common::checkMessageMetaData(message, Service::service_id, Descriptor::event_id,
                                                  Service::major_version, ::vsomeip::message_type_e::MT_NOTIFICATION,
                                                  ::vsomeip::message_type_e::MT_UNKNOWN, false, false);
  if (message.get_client() != 0) {
    common::LogWarning(kEventSource, "validateMessage", __LINE__)
        << "Incorrect client id: '" << message.get_client() << "', should be " << 0;
    return false;
  }
  return valid;
}

template <typename Descriptor, typename T>
bool EventState<Descriptor, T>::StoreMessage(const std::shared_ptr<::vsomeip::message>& message) {
  if (!validateMessage(*message)) {
    common::LogWarning(kEventSource, "onMessage", __LINE__) << "Discarding invalid message";
    return false;
  }
  const std::lock_guard<std::mutex> lock(message_mutex_);
  if (subscription_state_ == SubscriptionState::kNotSubscribed) {
    return false;  // overtaken by Unsubscribe
  }
  messages_.push_back(message);
  DropSurplusMessages(cache_size_);
  return true;
}

template <typename Descriptor, typename T>
void EventState<Descriptor, T>::ReportMessage() {
  const ara::core::internal::RunningCalls::Scope running(running_);
  const std::lock_guard<std::recursive_mutex> calling(handler_call_mutex_);
  std::function<void()> handler;
  {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    handler = receive_handler_;
  }
  if (handler) {
    handler();
  }
}

template <typename Descriptor, typename T>
void EventState<Descriptor, T>::ReportState(SubscriptionState state) {
  const ara::core::internal::RunningCalls::Scope running(running_);
  std::function<void(SubscriptionState)> handler;
  {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    handler = state_change_handler_;
  }
  if (handler) {
    handler(state);
  }
}

template <typename Descriptor, typename T>
ara::core::Result<std::size_t> EventState<Descriptor, T>::GetNewSamples(
    const std::function<void(SamplePtr<const T>)>& handler, std::size_t maxNumberOfSamples) {
  std::size_t waiting = 0;
  {
    const std::lock_guard<std::mutex> lock(message_mutex_);
    waiting = messages_.size();
    if (waiting == 0) {
      EnterCheck(e2exf::ProfileCheckStatus::kNoNewData);
    }
  }
  const auto samples = Samples();
  std::size_t delivered = 0;
  for (std::size_t i = std::min(waiting, maxNumberOfSamples); i > 0; --i) {
    auto slot = samples->Reserve();
    if (!slot) {
      if (delivered == 0) {
        return MakeErrorCode(ComErrc::kMaxSamplesExceeded);
      }
      break;
    }
    auto status = e2exf::ProfileCheckStatus::kNotAvailable;
    const auto message = TakeMessage(status);
    if (message == nullptr) {
      break;
    }
    auto value = Decode(*message);
    if (value) {
      handler(SampleCache::Add(std::move(slot), std::move(*value), status));
      ++delivered;
    }
  }
  return delivered;
}

}  // namespace ara::com::internal::vsomeip::proxy
