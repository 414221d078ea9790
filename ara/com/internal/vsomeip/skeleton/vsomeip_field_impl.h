#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/skeleton/field.h"
#include "ara/com/internal/skeleton/offer_gate.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_event_impl.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "core_types/com_error_domain.h"
#include "core_types/com_exception.h"
#include "core_types/future_error_domain.h"
#include "core_types/running_calls.h"
#include "platform/include/message_check.h"

namespace ara::com::internal::vsomeip::skeleton {

/// An offered field over SOME/IP: its notifier event and its getter. Requests arrive on the stack's threads.
template <typename T, typename Descriptor>
class FieldImpl : public EventImpl<T, Descriptor>, public virtual internal::skeleton::Field<T> {
 public:
  using Message = std::shared_ptr<::vsomeip::message>;

  /// What the platform's handler holds, weakly: the way to the field, which ends before the field does.
  class Getter {
   public:
    explicit Getter(const FieldImpl& field) noexcept : field_(field) {}

    /// Answers a request. Whatever goes wrong is one line in the log and one error response. While the field is going,
    /// nothing is answered: the offer ends.
    void onRequest(const Message& request) {
      const ara::core::internal::RunningCalls::Scope running(running_);
      if (!running) {
        return;
      }
      const internal::skeleton::GetHandlerScope inside;
      try {
        field_.handleGet(request);
      } catch (const std::exception& error) {
        Refuse(request, error.what());
      } catch (...) {
        Refuse(request, "what was thrown is no exception");
      }
    }

    /// Afterwards no request is being answered any more, but for one on the calling thread.
    void Close() { running_.Close(); }

   private:
    // The field may be gone by now: its get handler may have destroyed it.
    static void Refuse(const Message& request, const char* reason) {
      common::LogWarning(kSource, "onRequest", __LINE__)
          << "(Exception : skeleton/vsomeip_field_impl.h) handleGet() error : " << reason;
      try {
        ServiceImplBase::SendError(MakeErrorCode(ComErrc::kNetworkBindingFailure), request);
      } catch (const std::exception& error) {
        common::LogWarning(kSource, "onRequest", __LINE__) << "The error cannot be answered: " << error.what();
      }
    }

    const FieldImpl& field_;
    ara::core::internal::RunningCalls running_;
  };

  explicit FieldImpl(std::uint16_t instanceId) : EventImpl<T, Descriptor>(instanceId) {}
  ~FieldImpl() override { getter_->Close(); }
  FieldImpl(const FieldImpl&) = delete;
  FieldImpl& operator=(const FieldImpl&) = delete;

  void RegisterGetHandler(internal::skeleton::GetHandler<T> handler) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler_.swap(handler);  // the former one is destroyed without the lock: it may own what calls back
  }
  void Update(const T& value) override { this->Send(value); }

  /// Validates a request, asks the get handler, waits for its future, and sends what that yields. Throws
  /// IllegalStateException when there is no handler, std::runtime_error when its future ends without a result, and what
  /// the handler and the stack throw.
  void handleGet(const Message& request) const;

  const std::shared_ptr<Getter>& GetGetter() const noexcept { return getter_; }

 private:
  static constexpr const char* kSource = "skeleton/vsomeip_field_impl";

  mutable std::mutex mutex_;  // guards the handler
  internal::skeleton::GetHandler<T> handler_;
  const std::shared_ptr<Getter> getter_ = std::make_shared<Getter>(*this);
};

template <typename T, typename Descriptor>
void FieldImpl<T, Descriptor>::handleGet(const Message& request) const {
  using ::vsomeip::message_type_e;
  if (!common::checkMessageMetaData(*request, Descriptor::Service::service_id, Descriptor::getter_method_id,
                                    Descriptor::Service::major_version, message_type_e::MT_REQUEST,
                                    message_type_e::MT_REQUEST_NO_RETURN, true, true)) {
    common::LogWarning(kSource, "handleGet", 161) << "Discarding invalid message";
    return;
  }
  internal::skeleton::GetHandler<T> handler;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler = handler_;
  }
  if (!handler) {
    throw IllegalStateException("No Get handler registered!");
  }
  // The handler may destroy this field: nothing of it is used from here on.
  auto result = handler().GetResult();
  using ara::core::future_errc;
  for (const auto end : {future_errc::broken_promise, future_errc::no_state}) {
    if (!result && result.error() == MakeErrorCode(end)) {
      throw std::runtime_error(std::string("the Get handler's future has no result: ") + result.error().Message());
    }
  }
  ServiceImplBase::SendReply(std::move(result), request);
}

}  // namespace ara::com::internal::vsomeip::skeleton
