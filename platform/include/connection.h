#pragma once

#include <atomic>
#include <memory>
#include <stdexcept>

#include <vsomeip/vsomeip.hpp>

#include "platform/include/service_instance.h"
#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::runtime {

/// The process's one connection to the SOME/IP stack: a single `vsomeip::application`, started on first use and stopped
/// in an orderly way when the process exits. All operations may be called from any thread.
class ARA_PLATFORM_API VSomeIPConnection {
 public:
  class RequestedServiceInstance;

  VSomeIPConnection(const VSomeIPConnection&) = delete;
  VSomeIPConnection& operator=(const VSomeIPConnection&) = delete;

  /// The application object. It is there once DoRequestService() or Runtime::Init() has returned, and never changes:
  /// before that, std::runtime_error is thrown. Takes no lock.
  const std::shared_ptr<::vsomeip::application>& Application() const {
    const auto* const application = application_.load(std::memory_order_acquire);
    if (application == nullptr) {
      throw std::runtime_error("The SOME/IP stack has not been started");
    }
    return *application;
  }
  /// The stack's factory of messages and payloads.
  static std::shared_ptr<::vsomeip::runtime> MessageRuntime() { return ::vsomeip::runtime::get(); }

  /// Starts looking for a service instance, and before that the stack, if need be: throws std::runtime_error when it
  /// cannot be started. Requests are counted per service instance: the stack sees the first of them and the release
  /// that balances the last.
  void DoRequestService(const common::ServiceInstance& service);
  void DoReleaseService(const common::ServiceInstance& service);

  static VSomeIPConnection instance_;

 private:
  friend class StackThread;  // who starts the application, and owns it

  constexpr VSomeIPConnection() noexcept = default;
  ~VSomeIPConnection() = default;

  std::atomic<const std::shared_ptr<::vsomeip::application>*> application_{nullptr};
};

/// A service instance together with one request for it.
class VSomeIPConnection::RequestedServiceInstance : public common::ServiceInstance {
 public:
  /// No service, no request.
  RequestedServiceInstance() = default;
  /// Makes the request.
  explicit RequestedServiceInstance(const common::ServiceInstance& requested) : common::ServiceInstance(requested) {
    instance_.DoRequestService(*this);
  }
  RequestedServiceInstance(const RequestedServiceInstance&) = delete;
  RequestedServiceInstance& operator=(const RequestedServiceInstance&) = delete;

  /// Gives the request up and becomes the no-service value; without a request it does nothing.
  void DropServiceInstance() {
    if (*this != common::ServiceInstance()) {
      instance_.DoReleaseService(*this);
      static_cast<common::ServiceInstance&>(*this) = common::ServiceInstance();
    }
  }
};

}  // namespace ara::com::internal::vsomeip::runtime
