#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "core_types/com_error_domain.h"
#include "platform/include/find_service.h"
#include "platform/include/instance_identifier.h"
#include "platform/include/runtime.h"

namespace ara::com {

/// One instance of a service that was found: what a proxy is made from.
template <typename Interface>
class ServiceHandle {
 public:
  explicit ServiceHandle(InstanceIdentifier instance) noexcept : instance_(std::move(instance)) {}

  const InstanceIdentifier& GetInstanceId() const noexcept { return instance_; }

  friend bool operator==(const ServiceHandle& left, const ServiceHandle& right) noexcept {
    return left.instance_ == right.instance_;
  }
  friend bool operator<(const ServiceHandle& left, const ServiceHandle& right) noexcept {
    return left.instance_ < right.instance_;
  }

 private:
  InstanceIdentifier instance_;
};

/// What the application's proxies of all interfaces share: finding instances, and owning the binding. `Binding` is the
/// interface's proxy base, `AraServiceId` the interface's `ara::com` service id.
template <typename Binding, std::uint16_t AraServiceId>
class ServiceProxy {
 public:
  using HandleType = ServiceHandle<Binding>;

  ServiceProxy(ServiceProxy&&) noexcept = default;
  ServiceProxy& operator=(ServiceProxy&&) = delete;

  /// The instances that are offered now. The first search for a service waits for discovery's first answer, for half a
  /// second at most.
  static ServiceHandleContainer<HandleType> FindService(
      const InstanceIdentifier& instance = InstanceIdentifier::Any()) {
    internal::Runtime::Init();
    return ToHandles(internal::Runtime::FindService(AraServiceId, instance));
  }

  /// Calls `handler` with all instances that are offered, first when there are any and then after each change, on a
  /// thread of the stack, until StopFindService. Throws ComErrorDomainException (kServiceNotAvailable) when the
  /// platform carries no such service.
  static FindServiceHandle StartFindService(FindServiceHandler<HandleType> handler,
                                            const InstanceIdentifier& instance = InstanceIdentifier::Any()) {
    internal::Runtime::Init();
    return internal::Runtime::StartFindService(
        AraServiceId, instance,
        [handler = std::move(handler)](const InstanceIdentifierContainer& instances, FindServiceHandle search) {
          handler(ToHandles(instances), search);
        });
  }
  /// Ends a search. Afterwards its handler is not running, unless it is the handler that calls, and is never called
  /// again.
  static void StopFindService(FindServiceHandle search) { internal::Runtime::StopFindService(search); }

 protected:
  /// Throws ComErrorDomainException (kServiceNotAvailable) when the platform has no binding for the instance.
  explicit ServiceProxy(const HandleType& handle) : binding_(CreateBinding(handle.GetInstanceId())) {}
  ~ServiceProxy() = default;

  Binding& GetBinding() const noexcept { return *binding_; }

 private:
  static std::unique_ptr<Binding> CreateBinding(const InstanceIdentifier& instance) {
    internal::Runtime::Init();
    auto created = internal::Runtime::CreateProxy(AraServiceId, instance);
    auto* const binding = dynamic_cast<Binding*>(created.get());
    if (binding == nullptr) {
      MakeErrorCode(ComErrc::kServiceNotAvailable).ThrowAsException();
    }
    static_cast<void>(created.release());
    return std::unique_ptr<Binding>(binding);
  }

  static ServiceHandleContainer<HandleType> ToHandles(const InstanceIdentifierContainer& instances) {
    return {instances.begin(), instances.end()};
  }

  std::unique_ptr<Binding> binding_;
};

}  // namespace ara::com
