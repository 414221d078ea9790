#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/skeleton/field.h"
#include "ara/com/internal/skeleton/offer_gate.h"
#include "ara/com/internal/vsomeip/common/log_limit.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_event_impl.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "core_types/com_error_domain.h"
#include "core_types/com_exception.h"
#include "core_types/future_error_domain.h"
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
    explicit Getter(const FieldImpl& field) noexcept : field_(&field) {}

    /// Answers a request. Whatever goes wrong is one line in the log and one error response. When the field is gone,
    /// nothing is answered: the offer has ended.
    void onRequest(const Message& request) {
      const internal::skeleton::GetHandlerScope inside;
      try {
        std::optional<Handler> handler;
        {
          const std::lock_guard<std::mutex> lock(mutex_);
          if (field_ != nullptr) {
            handler = field_->HandlerOf(*request);
          }
        }
        if (handler) {
          Answer(*handler, request);  // which may destroy the field
        }
      } catch (const std::exception& error) {
        Refuse(request, error.what());
      } catch (...) {
        Refuse(request, "what was thrown is no exception");
      }
    }

    /// Afterwards the field is not used any more. Get handlers may still run.
    void Close() {
      const std::lock_guard<std::mutex> lock(mutex_);
      field_ = nullptr;
    }

   private:
    static void Refuse(const Message& request, const char* reason) {
      static common::LogLimit limit;
      common::LogWarningWithin(limit, kSource, "onRequest", __LINE__,
                               "(Exception : skeleton/vsomeip_field_impl.h) handleGet() error : ", reason);
      try {
        ServiceImplBase::SendError(MakeErrorCode(ComErrc::kNetworkBindingFailure), request);
      } catch (const std::exception& error) {
        static common::LogLimit unanswered;
        common::LogWarningWithin(unanswered, kSource, "onRequest", __LINE__,
                                 "The error cannot be answered: ", error.what());
      }
    }

    // Guards the pointer, and is held while the field is used; never while the application is called.
    std::mutex mutex_;
    const FieldImpl* field_;
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
  void handleGet(const Message& request) const {
    if (const auto handler = HandlerOf(*request)) {
      Answer(*handler, request);
    }
  }

  const std::shared_ptr<Getter>& GetGetter() const noexcept { return getter_; }

 private:
  using Handler = internal::skeleton::GetHandler<T>;

  static constexpr const char* kSource = "skeleton/vsomeip_field_impl";

  std::optional<Handler> HandlerOf(const ::vsomeip::message& request) const;
  static void Answer(const Handler& handler, const Message& request);

  mutable std::mutex mutex_;  // guards the handler
  Handler handler_;
  const std::shared_ptr<Getter> getter_ = std::make_shared<Getter>(*this);
};

// Empty where the request is not valid, and dropped.
template <typename T, typename Descriptor>
auto FieldImpl<T, Descriptor>::HandlerOf(const ::vsomeip::message& request) const -> std::optional<Handler> {
  using ::vsomeip::message_type_e;
  if (!common::checkMessageMetaData(request, Descriptor::Service::service_id, Descriptor::getter_method_id,
                                    Descriptor::Service::major_version, message_type_e::MT_REQUEST,
                                    message_type_e::MT_REQUEST_NO_RETURN, true, true)) {
    static common::LogLimit limit;
    common::LogWarningWithin(limit, kSource, "handleGet", 161, "Discarding invalid message");
    return std::nullopt;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!handler_) {
    throw IllegalStateException("No Get handler registered!");
  }
  return handler_;
}

template <typename T, typename Descriptor>
void FieldImpl<T, Descriptor>::Answer(const Handler& handler, const Message& request) {
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
