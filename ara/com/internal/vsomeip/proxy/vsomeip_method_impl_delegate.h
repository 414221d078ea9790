#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/proxy/response_decoding.h"
#include "core_types/promise.h"
#include "platform/include/connection.h"
#include "platform/include/message_check.h"

namespace ara::com::internal::vsomeip::proxy {

/// The calls of one method of one service instance that are under way: each request waits in a table, under its request
/// id, for its response. Shared with the response handler, which holds it weakly.
///
/// Calls start on the application's threads, responses arrive on the stack's. Calls are completed one after the other,
/// under a lock that starting one does not take: the thread that a result wakes often starts the next call at once, and
/// would have to wait for the thread that woke it. A future's continuation must not wait for another call of the same
/// method.
template <typename Descriptor, typename R>
class MethodImplDelegate {
 public:
  explicit MethodImplDelegate(std::uint16_t instance) noexcept : instance_(instance) {}
  MethodImplDelegate(const MethodImplDelegate&) = delete;
  MethodImplDelegate& operator=(const MethodImplDelegate&) = delete;

  /// Sends one request: empty for a getter, with the value as payload for a setter. Throws what the stack throws when
  /// it cannot be started.
  template <typename... Args>
  ara::core::Future<R> startCall(const Args&... args) {
    if (common::isMethodUndefined(Descriptor::method_id)) {
      common::GetLogger().LogFatal() << "Method id " << Descriptor::method_id << " is undefined";
      common::abort();
    }
    auto& connection = runtime::VSomeIPConnection::instance_;
    const auto application = connection.Application();
    const auto request = connection.MessageRuntime()->create_request(false);
    request->set_service(Descriptor::service_id);
    request->set_instance(instance_);
    request->set_method(Descriptor::method_id);
    request->set_interface_version(Descriptor::interface_version);
    request->set_session(NextSession());
    (detail::AddPayload(connection, *request, args), ...);

    ara::core::Promise<R> promise;
    auto future = promise.get_future();
    // The stack fills the request id in while sending. The lock makes a response that is faster than this thread wait.
    const std::lock_guard<std::mutex> lock(mutex_);
    application->send(request);
    pending_calls_.insert_or_assign(request->get_request(), PendingCall{request, std::move(promise)});
    return future;
  }

  /// Completes the call that a response answers. A response that answers none is dropped.
  void onMessage(const std::shared_ptr<::vsomeip::message>& response) {
    const std::lock_guard<std::mutex> completing(completion_mutex_);
    auto taken = TakeCall(response->get_request());
    if (taken.empty()) {
      return;
    }
    PendingCall& call = taken.mapped();
    if (!validateMessage(*call.request, *response)) {
      common::LogWarning(kSource, "onMessage", __LINE__) << "Discarding invalid message";
      call.promise.SetError(MakeErrorCode(ComErrc::kNetworkBindingFailure));
    } else if (response->get_return_code() != ::vsomeip::return_code_e::E_OK) {
      detail::SetError(call.promise, *response);
    } else {
      detail::SetResult(call.promise, *response);
    }
  }

  /// Whether a response fits a request: its header the method, its client and session id the request's.
  bool validateMessage(const ::vsomeip::message& request, const ::vsomeip::message& response) const {
    bool valid = common::checkMessageMetaData(response, Descriptor::service_id, Descriptor::method_id,
                                              Descriptor::interface_version, ::vsomeip::message_type_e::MT_RESPONSE,
                                              ::vsomeip::message_type_e::MT_ERROR, true, false);
    if (response.get_client() != request.get_client()) {
      common::LogWarning(kSource, "validateMessage", __LINE__)
          << "Incorrect client id:" << response.get_client() << " Vs " << request.get_client();
      valid = false;
    }
    if (response.get_session() != request.get_session()) {
      common::LogWarning(kSource, "validateMessage", __LINE__)
          << "Incorrect session id:" << response.get_session() << " Vs " << request.get_session();
      return false;
    }
    return valid;
  }

 private:
  static constexpr const char* kSource = detail::kDelegateSource;

  struct PendingCall {
    std::shared_ptr<::vsomeip::message> request;
    ara::core::Promise<R> promise;
  };

  using PendingCalls = std::unordered_map<::vsomeip::request_t, PendingCall>;

  // Empty when no call waits under that id.
  typename PendingCalls::node_type TakeCall(::vsomeip::request_t request) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return pending_calls_.extract(request);
  }

  std::uint16_t NextSession() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return ++session_counter_;
  }

  const std::uint16_t instance_;
  std::uint16_t session_counter_ = 0;  // the last session id used; wraps at 16 bits
  std::mutex completion_mutex_;        // held while a call is completed, so that completions do not overlap
  std::mutex mutex_;                   // guards the session counter and the pending calls
  PendingCalls pending_calls_;
};

}  // namespace ara::com::internal::vsomeip::proxy
