#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/skeleton/service_impl_base.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/common/payload.h"
#include "core_types/com_exception.h"
#include "platform/include/connection.h"
#include "platform/include/message_check.h"
#include "platform/include/transport_identifier.h"
#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::skeleton {

/// The SOME/IP binding of one offered service instance: the base of every service adapter. Owned by the runtime alone.
class ServiceImplBase : public internal::skeleton::ServiceImplBase {
 public:
  using EpsilonChange =
      std::function<bool(const std::shared_ptr<::vsomeip::payload>&, const std::shared_ptr<::vsomeip::payload>&)>;

  /// Changes the mode. Leaving kPoll runs every waiting call first, in order, with the binding's lock held.
  void SetMethodCallProcessingMode(MethodCallProcessingMode mode) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (mode_ == MethodCallProcessingMode::kPoll && mode != MethodCallProcessingMode::kPoll) {
      while (!pending_calls_.empty()) {
        const auto call = std::move(pending_calls_.front());
        pending_calls_.pop_front();
        call();
      }
    }
    mode_ = mode;
  }

  /// Runs the first waiting call on this thread; the future says whether there was one. Throws IllegalStateException
  /// when the mode is not kPoll.
  ara::core::Future<bool> ProcessNextMethodCall() override {
    std::function<void()> call;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (mode_ != MethodCallProcessingMode::kPoll) {
        throw IllegalStateException("ProcessNextMethodCall() called in non-polling mode!");
      }
      if (!pending_calls_.empty()) {
        call = std::move(pending_calls_.front());
        pending_calls_.pop_front();
      }
    }
    if (call) {
      call();
    }
    ara::core::Promise<bool> promise;
    promise.SetResult(static_cast<bool>(call));
    return promise.get_future();
  }

  /// Answers a request with a value or with an error response; one that wants no answer gets none.
  template <typename T>
  static void SendReply(ara::core::Result<T, ara::core::ErrorCode> result,
                        std::shared_ptr<::vsomeip::message> request) {
    if (!result.HasValue()) {
      SendError(result.error(), request);
      return;
    }
    if (!WantsAnswer(*request)) {
      return;
    }
    auto& connection = runtime::VSomeIPConnection::instance_;
    const auto response = connection.MessageRuntime()->create_response(request);
    response->set_payload(common::MakePayload(common::ValuePayload(result.value())));
    connection.Application()->send(response);
  }
  static void SendError(const ara::core::ErrorCode& error, const std::shared_ptr<::vsomeip::message>& request) {
    if (WantsAnswer(*request)) {
      SendErrorReply(error, request);
    }
  }

  /// What the platform's SOME/IP binding does for an adapter.
  ARA_PLATFORM_API static void SendErrorReply(const ara::core::ErrorCode& error,
                                              std::shared_ptr<::vsomeip::message> request);

 protected:
  /// `service` is the skeleton that is served; it must outlive this object.
  ServiceImplBase(internal::skeleton::ServiceBase& service, std::uint16_t instanceId)
      : internal::skeleton::ServiceImplBase(InstanceIdentifierContainer{common::FromTransportIdentifier(instanceId)}),
        service_(service),
        instance_id_(instanceId) {}

  internal::skeleton::ServiceBase& GetService() const noexcept { return service_; }
  std::uint16_t InstanceId() const noexcept { return instance_id_; }

  /// Runs a prepared method call: at once, or, in mode kPoll, when the application asks for it.
  void DispatchMethodCall(std::function<void()> call) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (mode_ == MethodCallProcessingMode::kPoll) {
        pending_calls_.push_back(std::move(call));
        return;
      }
    }
    call();
  }

  ARA_PLATFORM_API void OfferService(std::uint16_t service, std::uint16_t instance, std::uint8_t major,
                                     std::uint32_t minor);
  ARA_PLATFORM_API void StopOfferService(std::uint16_t service, std::uint16_t instance);
  ARA_PLATFORM_API void StopOfferField(std::uint16_t service, std::uint16_t instance, std::uint16_t event);

  /// Offers an event in its eventgroups. An undefined event is passed over.
  template <std::size_t N>
  void OfferEvent(std::uint16_t service, std::uint16_t instance, std::uint16_t event,
                  const std::uint16_t (&eventGroups)[N], bool isField, const EpsilonChange& epsilonChange) {
    if (common::isEventUndefined(event)) {
      static const std::string function = "OfferEvent<" + std::to_string(N) + ">";
      common::GetLogger().LogInfo().WithLocation("skeleton/vsomeip_service_impl_base", function.c_str(), 411)
          << "Skip offering undefined event";
      return;
    }
    const std::set<::vsomeip::eventgroup_t> groups(std::begin(eventGroups), std::end(eventGroups));
    runtime::VSomeIPConnection::instance_.Application()->offer_event(
        service, instance, event, groups,
        isField ? ::vsomeip::event_type_e::ET_FIELD : ::vsomeip::event_type_e::ET_EVENT,
        std::chrono::milliseconds::zero(), false, true, epsilonChange);
  }

 private:
  static bool WantsAnswer(const ::vsomeip::message& request) {
    return request.get_message_type() != ::vsomeip::message_type_e::MT_REQUEST_NO_RETURN;
  }

  internal::skeleton::ServiceBase& service_;
  std::deque<std::function<void()>> pending_calls_;
  MethodCallProcessingMode mode_ = MethodCallProcessingMode::kEvent;
  std::mutex mutex_;  // guards the pending calls and the mode
  const std::uint16_t instance_id_;
};

}  // namespace ara::com::internal::vsomeip::skeleton
