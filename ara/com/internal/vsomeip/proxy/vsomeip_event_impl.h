#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <utility>

#include "ara/com/internal/proxy/event.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/proxy/event_state.h"
#include "platform/include/message_check.h"
#include "serialization/deserializer.h"

namespace ara::com::internal::vsomeip::proxy {

/// A remote event over SOME/IP, or the notifier of a remote field. What arrives from the stack goes to an EventState,
/// which may outlive this object for the time of a call; after the destructor no handler of the application runs.
template <typename Descriptor, typename T>
class EventImpl : public virtual internal::proxy::Event<T> {
 public:
  explicit EventImpl(std::uint16_t instance) : state_(std::make_shared<State>(instance)) {}
  // By now no handler may use this object: the binding has stopped them before it began to destroy its fields.
  ~EventImpl() override {
    state_->StopHandlers();
    state_->Unsubscribe();
  }
  EventImpl(const EventImpl&) = delete;
  EventImpl& operator=(const EventImpl&) = delete;

  void Subscribe(std::size_t cacheSize) override {
    try {
      DoSubscribe(cacheSize, false);
    } catch (const std::exception& error) {
      common::LogWarning(kEventSource, "Subscribe", __LINE__)
          << "(Exception : proxy/vsomeip_event_impl.h) Subscribe() DoSubscribe error : " << error.what();
    }
  }
  void Unsubscribe() override {
    RequireDefined();
    state_->Unsubscribe();
  }

  SubscriptionState GetSubscriptionState() const override { return state_->GetSubscriptionState(); }
  bool IsSubscribed() const override { return GetSubscriptionState() == SubscriptionState::kSubscribed; }
  std::size_t GetFreeSampleCount() const override { return state_->GetFreeSampleCount(); }

  ara::core::Result<std::size_t> GetNewSamples(
      std::function<void(SamplePtr<const T>)> handler,
      std::size_t maxNumberOfSamples = std::numeric_limits<std::size_t>::max()) override {
    return state_->GetNewSamples(handler, maxNumberOfSamples);
  }

  void SetReceiveHandler(std::function<void()> handler) override { state_->SetReceiveHandler(std::move(handler)); }
  void UnsetReceiveHandler() override { state_->SetReceiveHandler(nullptr); }
  void SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler) override {
    state_->SetSubscriptionStateChangeHandler(std::move(handler));
  }
  void UnsetSubscriptionStateChangeHandler() override { state_->SetSubscriptionStateChangeHandler(nullptr); }

  e2exf::CheckResult DoCheckResult() const override { return state_->DoCheckResult(); }
  void StopHandlers() override { state_->StopHandlers(); }

  /// Whether a notification fits this event: its header the event, its client id 0.
  bool validateMessage(const ::vsomeip::message& message) const { return state_->validateMessage(message); }

 private:
  using State = EventState<Descriptor, T>;

  // Throws std::invalid_argument for a cache size of 0, and what the stack throws.
  void DoSubscribe(std::size_t cacheSize, bool isField) {
    RequireDefined();
    state_->Subscribe(cacheSize, isField);
  }

  static void RequireDefined() {
    if (common::isEventUndefined(Descriptor::event_id)) {
      common::GetLogger().LogFatal() << "Event id " << Descriptor::event_id << " is undefined";
      common::abort();
    }
  }

  std::shared_ptr<State> state_;
};

}  // namespace ara::com::internal::vsomeip::proxy
