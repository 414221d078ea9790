#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "ara/com/internal/skeleton/service_impl_base.h"
#include "platform/include/instance_identifier.h"
#include "platform/include/service_binding.h"

namespace ara::com::internal {

/// The service instances that the process offers, with the adapters that serve them, which are owned here alone. An
/// instance is claimed before its first adapter is made, until its last one is gone. All operations may be called from
/// any thread, from get handlers too: no lock is held while adapters are made or destroyed, and nobody waits.
class ServiceOffers {
 public:
  /// Offers one instance through every binding that carries it, unless `service` offers it already under that name.
  /// False when none does. Throws IllegalStateException when the instance is claimed otherwise: by another skeleton, in
  /// another spelling, by another thread that is offering or withdrawing it; or when it was withdrawn meanwhile. What a
  /// binding throws passes. Nothing of the instance is offered then.
  bool Offer(skeleton::ServiceBase& service, std::uint16_t araServiceId, const InstanceIdentifier& instance,
             const std::vector<ServiceBinding*>& bindings);
  /// Destroys the adapters of all instances, the latest first. An instance that another thread is offering is withdrawn
  /// by that thread.
  void Stop(const skeleton::ServiceBase& service, std::uint16_t araServiceId);

 private:
  using Adapters = std::vector<std::unique_ptr<skeleton::ServiceImplBase>>;
  struct Claim {
    const skeleton::ServiceBase* service;
    std::uint16_t ara_service_id;
    InstanceIdentifier canonical;  // tells instances apart
    InstanceIdentifier identifier;
    enum class State { kBeingOffered, kToBeWithdrawn, kStands, kBeingWithdrawn } state;
    Adapters adapters;
  };
  using Claims = std::list<Claim>;

  bool MakeClaim(Claim wanted, Claims::iterator& claim);
  void GiveUp(Claims::iterator claim);

  std::mutex mutex_;  // guards claims_
  Claims claims_;     // in the order in which they were made
};

}  // namespace ara::com::internal
