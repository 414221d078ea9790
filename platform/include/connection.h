#pragma once

#include <memory>

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

  /// The application object, initialised and started. Throws std::runtime_error when the stack cannot be started.
  std::shared_ptr<::vsomeip::application> Application();
  /// The stack's factory of messages and payloads.
  std::shared_ptr<::vsomeip::runtime> MessageRuntime();

  /// Starts looking for a service instance. Requests are counted per service instance: the stack sees the first of them
  /// and the release that balances the last.
  void DoRequestService(const common::ServiceInstance& service);
  void DoReleaseService(const common::ServiceInstance& service);

  static VSomeIPConnection instance_;

 private:
  constexpr VSomeIPConnection() noexcept = default;
  ~VSomeIPConnection() = default;
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
