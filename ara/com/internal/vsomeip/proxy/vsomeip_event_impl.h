#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "ara/com/internal/proxy/event.h"
#include "ara/com/internal/proxy/event_data_container.h"
#include "ara/com/internal/vsomeip/common/log_limit.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/proxy/event_subscription.h"
#include "ara/com/internal/vsomeip/proxy/payload_view.h"
#include "ara/com/internal/vsomeip/proxy/proxy_impl_base.h"
#include "core_types/com_error_domain.h"
#include "core_types/result.h"
#include "platform/include/message_check.h"
#include "serialization/deserializer.h"

namespace ara::com::internal::vsomeip::proxy {

/// A remote event over SOME/IP, or the notifier of a remote field: what depends on the type of its values. The
/// subscription, which does not, may outlive this object for the time of a call; after the destructor no handler of the
/// application runs, but for one that runs the destructor.
template <typename Descriptor, typename T>
class EventImpl : public virtual internal::proxy::Event<T>, public ProxyImplBase {
 public:
  explicit EventImpl(std::uint16_t instance) : subscription_(EventSubscription::Open(Identity(instance))) {}
  ~EventImpl() override { subscription_->Close(); }
  EventImpl(const EventImpl&) = delete;
  EventImpl& operator=(const EventImpl&) = delete;

  void Subscribe(std::size_t cacheSize) override {
    try {
      DoSubscribe(cacheSize, false);
    } catch (const std::exception& error) {
      common::LogWarning(kSource, "Subscribe", __LINE__)
          << "(Exception : proxy/vsomeip_event_impl.h) Subscribe() DoSubscribe error : " << error.what();
    }
  }
  void Unsubscribe() override {
    RequireDefined();
    subscription_->Unsubscribe();
  }

  SubscriptionState GetSubscriptionState() const override { return subscription_->GetSubscriptionState(); }
  bool IsSubscribed() const override { return GetSubscriptionState() == SubscriptionState::kSubscribed; }
  std::size_t GetFreeSampleCount() const override { return subscription_->GetFreeSampleCount(); }

  ara::core::Result<std::size_t> GetNewSamples(
      std::function<void(SamplePtr<const T>)> handler,
      std::size_t maxNumberOfSamples = std::numeric_limits<std::size_t>::max()) override;

  void SetReceiveHandler(std::function<void()> handler) override {
    subscription_->SetReceiveHandler(std::move(handler));
  }
  void UnsetReceiveHandler() override { subscription_->SetReceiveHandler(nullptr); }
  void SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler) override {
    subscription_->SetSubscriptionStateChangeHandler(std::move(handler));
  }
  void UnsetSubscriptionStateChangeHandler() override { subscription_->SetSubscriptionStateChangeHandler(nullptr); }

  e2exf::CheckResult DoCheckResult() const override { return subscription_->DoCheckResult(); }
  void StopHandlers() override { subscription_->StopHandlers(); }

  /// Whether a notification fits this event: its header the event, its client id 0.
  bool validateMessage(const ::vsomeip::message& message) const { return subscription_->validateMessage(message); }

 private:
  using SampleCache = internal::proxy::EventDataContainer<T>;

  static constexpr const char* kSource = "proxy/vsomeip_event_impl";

  static EventIdentity Identity(std::uint16_t instance) {
    using Service = typename Descriptor::Service;
    return {Service::service_id,
            instance,
            Service::major_version,
            Service::minor_version,
            Descriptor::event_id,
            Descriptor::event_groups[0],
            {std::begin(Descriptor::event_groups), std::end(Descriptor::event_groups)}};
  }

  static void RequireDefined() {
    if (common::isEventUndefined(Descriptor::event_id)) {
      common::GetLogger().LogFatal() << "Event id " << Descriptor::event_id << " is undefined";
      common::abort();
    }
  }

  // Throws std::invalid_argument for a cache size of 0, and what the stack throws.
  void DoSubscribe(std::size_t cacheSize, bool isField) {
    RequireDefined();
    if (cacheSize == 0) {
      throw std::invalid_argument("cache_size must be at least 1");
    }
    subscription_->Subscribe(cacheSize, std::make_shared<SampleCache>(cacheSize), isField);
  }

  // Absent, and logged, where the payload cannot be decoded.
  static std::optional<T> Decode(const ::vsomeip::message& message) {
    try {
      const PayloadView payload(message);
      return common::DeserializeFieldValue<T>(payload.Data(), payload.Size());
    } catch (const std::exception& error) {
      static common::LogLimit limit;
      common::LogWarningWithin(
          limit, kSource, "GetNewSamples", __LINE__,
          "(Exception : proxy/vsomeip_event_impl.h) GetNewSamples() deserializer error : ", error.what());
      return std::nullopt;
    }
  }

  const std::shared_ptr<EventSubscription> subscription_;
};

template <typename Descriptor, typename T>
ara::core::Result<std::size_t> EventImpl<Descriptor, T>::GetNewSamples(std::function<void(SamplePtr<const T>)> handler,
                                                                       std::size_t maxNumberOfSamples) {
  const auto subscription = subscription_;  // the handler may destroy this object
  const auto waiting = subscription->GetWaiting();
  const auto samples = std::static_pointer_cast<SampleCache>(waiting.slots);
  std::size_t delivered = 0;
  for (std::size_t i = std::min(waiting.count, maxNumberOfSamples); i > 0; --i) {
    auto slot = samples->Reserve();
    if (!slot) {
      if (delivered == 0) {
        return MakeErrorCode(ComErrc::kMaxSamplesExceeded);
      }
      break;
    }
    const auto taken = subscription->TakeMessage();
    if (taken.message == nullptr) {
      break;
    }
    if (auto value = Decode(*taken.message)) {
      handler(SampleCache::Add(std::move(slot), std::move(*value), taken.status));
      ++delivered;
    }
  }
  return delivered;
}

}  // namespace ara::com::internal::vsomeip::proxy
