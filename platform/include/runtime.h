#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/include/find_service.h"
#include "platform/include/instance_identifier.h"
#include "platform/include/visibility.h"

namespace ara::com::internal {

namespace proxy {
class ProxyBindingBase;
}
namespace skeleton {
class ServiceBase;
}
class ServiceBinding;

/// The communication runtime: finds services and creates proxies through whatever transport bindings have registered.
/// It knows none of them. All operations may be called from any thread.
class ARA_PLATFORM_API Runtime {
 public:
  /// Makes the runtime and its bindings ready; further calls do nothing. Throws std::runtime_error when a binding
  /// cannot be started.
  static void Init();

  /// Adds a transport binding. It is asked after those that registered before it.
  static void RegisterBinding(std::unique_ptr<ServiceBinding> binding);

  /// The instances of a service that are offered now. The first search for a service waits for discovery's first
  /// answer, for half a second at most; later ones return at once.
  static InstanceIdentifierContainer FindService(std::uint16_t araServiceId, const InstanceIdentifier& instance);

  /// Follows the instances of a service: `handler` is called on a thread of the stack with all that are offered, first
  /// when there are any and then after each change, until StopFindService. Throws ComErrorDomainException
  /// (kServiceNotAvailable) when no binding knows the service.
  static FindServiceHandle StartFindService(std::uint16_t araServiceId, const InstanceIdentifier& instance,
                                            FindServiceHandler<InstanceIdentifier> handler);
  /// Afterwards the handler is not running, unless it is the handler that calls, and is never called again.
  static void StopFindService(FindServiceHandle handle);

  /// A new proxy binding for one instance; empty when no binding knows the service or the instance.
  static std::unique_ptr<proxy::ProxyBindingBase> CreateProxy(std::uint16_t araServiceId,
                                                              const InstanceIdentifier& instance);

  /// Offers a skeleton as one instance of a service, through every binding that carries it, until StopOfferService; an
  /// offer of the same skeleton that stands already is left alone. Throws IllegalStateException when the skeleton is of
  /// another interface, when the process offers that instance otherwise, or when it was withdrawn meanwhile;
  /// ComErrorDomainException (kServiceNotAvailable) when no binding carries the service or the instance.
  static void OfferService(skeleton::ServiceBase& service, std::uint16_t araServiceId, InstanceIdentifier instance);
  /// Withdraws all instances of a skeleton's service, the latest first; what other threads are withdrawing may still be
  /// there. Get handlers may still run.
  static void StopOfferService(skeleton::ServiceBase& service, std::uint16_t araServiceId);
};

}  // namespace ara::com::internal
