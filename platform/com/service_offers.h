#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "ara/com/internal/skeleton/service_impl_base.h"
#include "platform/include/instance_identifier.h"
#include "platform/include/service_binding.h"

namespace ara::com::internal {

/// The services that the process offers, with the adapters that serve them, which are owned here alone. All operations
/// may be called from any thread, from get handlers too: no lock is held while adapters are made or destroyed.
class ServiceOffers {
 public:
  /// Offers one instance through every binding that carries it, unless it is offered already. False when none does.
  /// What a binding throws passes; the instance is not offered then.
  bool Offer(skeleton::ServiceBase& service, std::uint16_t araServiceId, const InstanceIdentifier& instance,
             const std::vector<ServiceBinding*>& bindings);
  /// Destroys the adapters of all instances, the latest first.
  void Stop(const skeleton::ServiceBase& service, std::uint16_t araServiceId);

 private:
  using Key = std::pair<const skeleton::ServiceBase*, std::uint16_t>;
  using Adapters = std::vector<std::unique_ptr<skeleton::ServiceImplBase>>;
  struct Instance {
    InstanceIdentifier identifier;
    Adapters adapters;  // empty while they are being made
  };

  bool Reserve(const Key& key, const InstanceIdentifier& instance);
  void Store(const Key& key, const InstanceIdentifier& instance, Adapters adapters);

  std::mutex mutex_;  // guards offers_
  std::map<Key, std::vector<Instance>> offers_;
};

}  // namespace ara::com::internal
