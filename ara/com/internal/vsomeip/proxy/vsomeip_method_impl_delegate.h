#pragma once

#include <cstdint>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/vsomeip/common/log_limit.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/common/payload.h"
#include "ara/com/internal/vsomeip/proxy/payload_view.h"
#include "core_types/com_error_domain.h"
#include "core_types/promise.h"
#include "platform/include/connection.h"
#include "platform/include/error_domain_registry.h"
#include "platform/include/message_check.h"
#include "serialization/deserializer.h"
#include "serialization/error_code_codec.h"

namespace ara::com::internal::vsomeip::proxy {

namespace detail {

inline constexpr const char* kDelegateSource = "proxy/vsomeip_method_impl_delegate";

/// The value that a response carries, or kNetworkBindingFailure where it cannot be decoded.
template <typename R>
ara::core::Result<R> DecodeResult(const ::vsomeip::message& response) {
  try {
    const PayloadView payload(response);
    return common::DeserializeFieldValue<R>(payload.Data(), payload.Size());
  } catch (const std::exception& error) {
    static common::LogLimit limit;
    common::LogWarningWithin(
        limit, kDelegateSource, "SetResult", __LINE__,
        "(Exception : proxy/vsomeip_method_impl_delegate.h) SetResult() deserializer error : ", error.what());
    return MakeErrorCode(ComErrc::kNetworkBindingFailure);
  }
}

/// The error code that a response carries, or kNetworkBindingFailure where it cannot be decoded.
inline ara::core::ErrorCode DecodeError(const ::vsomeip::message& response) {
  try {
    const PayloadView payload(response);
    const common::Deserializer<ara::core::ErrorCode> decoded(payload.Data(), payload.Size());
    const auto& domain = common::error_domains::Registry::getDomain(decoded.domainId());
    return ara::core::ErrorCode(decoded.value(), decoded.supportData(), domain);
  } catch (const std::exception& error) {
    static common::LogLimit limit;
    common::LogWarningWithin(
        limit, kDelegateSource, "SetError", __LINE__,
        "(Exception : proxy/vsomeip_method_impl_delegate.h) SetError() deserializer error : ", error.what());
    return MakeErrorCode(ComErrc::kNetworkBindingFailure);
  }
}

/// Complete a call from a response. The decoding is over before the promise is touched.
template <typename R>
void SetResult(ara::core::Promise<R>& promise, const ::vsomeip::message& response) {
  promise.SetResult(DecodeResult<R>(response));
}
template <typename R>
void SetError(ara::core::Promise<R>& promise, const ::vsomeip::message& response) {
  promise.SetError(DecodeError(response));
}

}  // namespace detail

/// The calls of one method of one service instance that are under way: each request waits in a table, under its request
/// id, for its response. Shared with the response handler, which holds it weakly.
///
/// Calls start on the application's threads, responses arrive on the stack's. Calls are completed one after the other
/// and without a lock: a thread that finds none at it completes all that are answered; any other leaves its response to
/// that thread. So a continuation that takes long keeps one thread of the stack, not all of them. A continuation must
/// not wait for another call of the same method, which is completed after it.
template <typename Descriptor, typename R>
class MethodImplDelegate {
 public:
  explicit MethodImplDelegate(std::uint16_t instance) noexcept : instance_(instance) {}
  MethodImplDelegate(const MethodImplDelegate&) = delete;
  MethodImplDelegate& operator=(const MethodImplDelegate&) = delete;

  /// Sends one request: empty for a getter, with the value as payload for a setter. One that the stack refuses, say for
  /// its size, fails with kNetworkBindingFailure.
  template <typename... Args>
  ara::core::Future<R> startCall(const Args&... args) {
    if (common::isMethodUndefined(Descriptor::method_id)) {
      common::GetLogger().LogFatal() << "Method id " << Descriptor::method_id << " is undefined";
      common::abort();
    }
    auto& connection = runtime::VSomeIPConnection::instance_;
    const auto& application = connection.Application();
    const auto request = connection.MessageRuntime()->create_request(false);
    request->set_service(Descriptor::service_id);
    request->set_instance(instance_);
    request->set_method(Descriptor::method_id);
    request->set_interface_version(Descriptor::interface_version);
    (request->set_payload(common::MakePayload(common::ValuePayload(args))), ...);

    ara::core::Promise<R> promise;
    auto future = promise.get_future();
    CallNode overtaken;
    {
      // The stack fills the request id in while sending. The lock makes a response that is faster than this thread
      // wait.
      const std::lock_guard<std::mutex> lock(mutex_);
      request->set_session(++session_counter_);
      try {
        application->send(request);
      } catch (const std::exception& error) {
        common::LogWarning(kSource, "startCall", __LINE__) << "The request cannot be sent: " << error.what();
        promise.SetError(MakeErrorCode(ComErrc::kNetworkBindingFailure));
        return future;
      }
      overtaken = pending_calls_.extract(request->get_request());
      Insert(request, std::move(promise));
    }
    if (!overtaken.empty()) {
      common::LogWarning(kSource, "startCall", __LINE__)
          << "Request id " << request->get_request() << " has come around: the older call is given up";
      LogThrown([&] { overtaken.mapped().promise->SetError(MakeErrorCode(ComErrc::kNetworkBindingFailure)); });
    }
    return future;
  }

  /// Completes the call that a response answers. A response that answers none is dropped.
  void onMessage(const std::shared_ptr<::vsomeip::message>& response) {
    std::unique_lock<std::mutex> lock(mutex_);
    CallNode call = pending_calls_.extract(response->get_request());
    if (call.empty()) {
      return;
    }
    if (is_completing_) {
      answered_.push_back({std::move(call), response});
      return;
    }
    is_completing_ = true;
    lock.unlock();
    Complete(call.mapped(), *response);
    lock.lock();
    while (!answered_.empty()) {
      const AnsweredCall next = std::move(answered_.front());
      answered_.pop_front();
      lock.unlock();
      Complete(next.call.mapped(), *next.response);
      lock.lock();
    }
    is_completing_ = false;
    spare_node_ = std::move(call);
  }

  /// Whether a response fits a request: its header the method, its client and session id the request's.
  bool validateMessage(const ::vsomeip::message& request, const ::vsomeip::message& response) const {
    bool valid = common::checkMessageMetaData(response, Descriptor::service_id, Descriptor::method_id,
                                              Descriptor::interface_version, ::vsomeip::message_type_e::MT_RESPONSE,
                                              ::vsomeip::message_type_e::MT_ERROR, true, false);
    if (response.get_client() != request.get_client()) {
      static common::LogLimit limit;
      common::LogWarningWithin(limit, kSource, "validateMessage", __LINE__,
                               "Incorrect client id:", response.get_client(), " Vs ", request.get_client());
      valid = false;
    }
    if (response.get_session() != request.get_session()) {
      static common::LogLimit limit;
      common::LogWarningWithin(limit, kSource, "validateMessage", __LINE__,
                               "Incorrect session id:", response.get_session(), " Vs ", request.get_session());
      return false;
    }
    return valid;
  }

 private:
  static constexpr const char* kSource = detail::kDelegateSource;

  struct PendingCall {
    std::shared_ptr<::vsomeip::message> request;
    std::optional<ara::core::Promise<R>> promise;
  };
  using PendingCalls = std::unordered_map<::vsomeip::request_t, PendingCall>;
  using CallNode = typename PendingCalls::node_type;

  struct AnsweredCall {
    CallNode call;
    std::shared_ptr<::vsomeip::message> response;
  };

  // With the lock held.
  void Insert(const std::shared_ptr<::vsomeip::message>& request, ara::core::Promise<R>&& promise) {
    if (spare_node_.empty()) {
      pending_calls_.emplace(request->get_request(), PendingCall{request, std::move(promise)});
      return;
    }
    spare_node_.key() = request->get_request();
    spare_node_.mapped().request = request;
    spare_node_.mapped().promise.emplace(std::move(promise));
    pending_calls_.insert(std::move(spare_node_));
  }

  // Leaves nothing of the call.
  void Complete(PendingCall& call, const ::vsomeip::message& response) const {
    LogThrown([&] {
      if (!validateMessage(*call.request, response)) {
        static common::LogLimit limit;
        common::LogWarningWithin(limit, kSource, "onMessage", __LINE__, "Discarding invalid message");
        call.promise->SetError(MakeErrorCode(ComErrc::kNetworkBindingFailure));
      } else if (response.get_return_code() != ::vsomeip::return_code_e::E_OK) {
        detail::SetError(*call.promise, response);
      } else {
        detail::SetResult(*call.promise, response);
      }
    });
    call.promise.reset();
    call.request = nullptr;
  }

  // What a continuation throws is logged: it would leave through the stack's thread, and with other calls unanswered,
  // or through another call of the application.
  template <typename Action>
  static void LogThrown(Action action) {
    try {
      action();
    } catch (const std::exception& error) {
      common::LogWarning(kSource, "onMessage", __LINE__) << "A continuation has thrown: " << error.what();
    } catch (...) {
      common::LogWarning(kSource, "onMessage", __LINE__) << "A continuation has thrown what is no exception";
    }
  }

  const std::uint16_t instance_;
  std::uint16_t session_counter_ = 0;  // the last session id used; wraps at 16 bits
  std::mutex mutex_;                   // guards the session counter and the members below
  PendingCalls pending_calls_;
  CallNode spare_node_;               // of the last call that was answered: the next one needs no allocation
  bool is_completing_ = false;        // a thread completes calls
  std::list<AnsweredCall> answered_;  // left to that thread
};

}  // namespace ara::com::internal::vsomeip::proxy
