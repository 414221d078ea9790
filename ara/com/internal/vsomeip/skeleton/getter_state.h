#pragma once

#include <cstddef>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/skeleton/field.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "core_types/com_error_domain.h"
#include "core_types/com_exception.h"
#include "core_types/running_calls.h"
#include "platform/include/message_check.h"

namespace ara::com::internal::vsomeip::skeleton {

/// The getter of one offered field: the application's handler, and the answers that it still owes. The platform's
/// handler holds it weakly. Requests arrive on the stack's threads.
template <typename T, typename Descriptor>
class GetterState : public std::enable_shared_from_this<GetterState<T, Descriptor>> {
 public:
  using Message = std::shared_ptr<::vsomeip::message>;

  /// More requests than this may not wait for their answers at once.
  static constexpr std::size_t kMaxPendingReplies = 1024;

  void RegisterGetHandler(internal::skeleton::GetHandler<T> handler) {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler_ = std::move(handler);
  }

  /// Answers one request. Throws IllegalStateException when there is no handler, and what the handler throws.
  void handleGet(const Message& request) {
    using ::vsomeip::message_type_e;
    if (!common::checkMessageMetaData(*request, Descriptor::Service::service_id, Descriptor::getter_method_id,
                                      Descriptor::Service::major_version, message_type_e::MT_REQUEST,
                                      message_type_e::MT_REQUEST_NO_RETURN, true, true)) {
      common::LogWarning("skeleton/vsomeip_field_impl", "handleGet", 161) << "Discarding invalid message";
      return;
    }
    const ara::core::internal::RunningCalls::Scope running(running_);
    internal::skeleton::GetHandler<T> handler;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      handler = handler_;
    }
    if (!handler) {
      throw IllegalStateException("No Get handler registered!");
    }
    auto future = handler();
    if (future.is_ready()) {
      ServiceImplBase::SendReply(future.GetResult(), request);
    } else {
      ReplyLater(std::move(future), request);
    }
  }

  /// As handleGet, for the platform: what is thrown is logged and answered with an error response.
  void onRequest(const Message& request) {
    try {
      handleGet(request);
    } catch (const std::exception& error) {
      common::LogWarning("skeleton/vsomeip_field_impl", "onRequest", __LINE__)
          << "(Exception : skeleton/vsomeip_field_impl.h) handleGet() error : " << error.what();
      ServiceImplBase::SendErrorReply(MakeErrorCode(ComErrc::kNetworkBindingFailure), request);
    }
  }

  /// Before the field goes: no handler runs any more after this, and no answer is sent.
  void Close() {
    std::list<PendingReply> dropped;  // destroyed without the lock: each destructor waits for its continuation
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      handler_ = nullptr;
      closed_ = true;
      dropped.swap(pending_);
    }
    dropped.clear();
    running_.WaitForOtherThreads();
  }

 private:
  struct PendingReply {
    ara::core::Future<T> future;
    Message request;
  };
  using Position = typename std::list<PendingReply>::iterator;

  // The request waits in the list until the future is ready; no thread waits with it.
  void ReplyLater(ara::core::Future<T> future, const Message& request) {
    Position position;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (closed_) {
        return;
      }
      if (pending_.size() >= kMaxPendingReplies) {
        throw IllegalStateException("Too many getter requests are waiting for the get handler's futures!");
      }
      position = pending_.insert(pending_.end(), PendingReply{std::move(future), request});
    }
    position->future.then([weak = this->weak_from_this(), position] {
      if (const auto self = weak.lock()) {
        self->Reply(position);
      }
    });
  }

  // On the thread that made the future ready.
  void Reply(Position position) {
    const ara::core::internal::RunningCalls::Scope running(running_);
    std::list<PendingReply> ready;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (closed_) {
        return;
      }
      ready.splice(ready.end(), pending_, position);
    }
    ServiceImplBase::SendReply(ready.front().future.GetResult(), ready.front().request);
  }

  std::mutex mutex_;  // guards the members below
  internal::skeleton::GetHandler<T> handler_;
  std::list<PendingReply> pending_;
  bool closed_ = false;

  ara::core::internal::RunningCalls running_;
};

}  // namespace ara::com::internal::vsomeip::skeleton
