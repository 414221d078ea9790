#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/include/find_service.h"
#include "platform/include/instance_identifier.h"

namespace ara::com::internal {

namespace proxy {
class ProxyFactory;
}
namespace skeleton {
class ServiceBase;
class ServiceImplBase;
}  // namespace skeleton

/// What the communication runtime asks of a transport binding. A binding is registered once and lives until the process
/// ends. Services go by their `ara::com` id; "unknown" always means that this binding does not carry the service.
class ServiceBinding {
 public:
  virtual ~ServiceBinding() = default;

  /// Makes the binding ready: called by Runtime::Init(), any number of times.
  virtual void Init() = 0;

  /// The instances that are offered now and fit `instance` (InstanceIdentifier::Any() fits all). Empty when unknown.
  virtual InstanceIdentifierContainer FindService(std::uint16_t araServiceId, const InstanceIdentifier& instance) = 0;

  /// Calls `handler` with the instances that are offered, now if there are any and after every change. Returns 0 when
  /// unknown, else the id to stop the search with.
  virtual std::uint64_t StartFindService(std::uint16_t araServiceId, const InstanceIdentifier& instance,
                                         std::function<void(InstanceIdentifierContainer)> handler) = 0;
  /// Afterwards the handler is not running (unless it is this handler that calls) and is never called again.
  virtual void StopFindService(std::uint64_t search) = 0;

  /// The factory of proxies of one instance. Empty when unknown, or when `instance` is no instance of this transport.
  virtual std::shared_ptr<proxy::ProxyFactory> GetProxyFactory(std::uint16_t araServiceId,
                                                               const InstanceIdentifier& instance) = 0;

  /// The one spelling of an instance that may be written in several ways ("7", "0x7"); empty when `instance` is no
  /// instance of this transport.
  virtual std::optional<InstanceIdentifier> Canonical(const InstanceIdentifier& instance) = 0;
  /// Offers one instance of `service` and returns what serves it, the binding's adapter: destroying that withdraws the
  /// offer. Empty when unknown, or when `instance` is no instance of this transport. Throws IllegalStateException when
  /// `service` is a skeleton of another interface.
  virtual std::unique_ptr<skeleton::ServiceImplBase> OfferService(skeleton::ServiceBase& service,
                                                                  std::uint16_t araServiceId,
                                                                  const InstanceIdentifier& instance) = 0;
};

}  // namespace ara::com::internal
