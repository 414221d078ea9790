#include "platform/com/service_offers.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "core_types/com_exception.h"

namespace ara::com::internal {

namespace {

std::optional<InstanceIdentifier> CanonicalName(const InstanceIdentifier& instance,
                                                const std::vector<ServiceBinding*>& bindings) {
  for (ServiceBinding* const binding : bindings) {
    if (auto canonical = binding->Canonical(instance)) {
      return canonical;
    }
  }
  return std::nullopt;
}

std::string Name(const InstanceIdentifier& instance, std::uint16_t araServiceId) {
  return "Instance \"" + instance.ToString() + "\" of service " + std::to_string(araServiceId);
}

}  // namespace

bool ServiceOffers::Offer(skeleton::ServiceBase& service, std::uint16_t araServiceId,
                          const InstanceIdentifier& instance, const std::vector<ServiceBinding*>& bindings) {
  const auto canonical = CanonicalName(instance, bindings);
  if (!canonical) {
    return false;
  }
  Claims::iterator claim;
  if (!MakeClaim({&service, araServiceId, *canonical, instance, Claim::State::kBeingOffered, {}}, claim)) {
    return true;
  }
  Adapters adapters;
  try {
    for (ServiceBinding* const binding : bindings) {
      if (auto adapter = binding->OfferService(service, araServiceId, instance)) {
        adapters.push_back(std::move(adapter));
      }
    }
  } catch (...) {
    adapters.clear();
    GiveUp(claim);
    throw;
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (claim->state == Claim::State::kBeingOffered && !adapters.empty()) {
      claim->adapters = std::move(adapters);
      claim->state = Claim::State::kStands;
      return true;
    }
  }
  const bool is_carried = !adapters.empty();
  adapters.clear();
  GiveUp(claim);
  if (is_carried) {
    throw IllegalStateException(Name(instance, araServiceId) + " was withdrawn while it was being offered");
  }
  return false;
}

void ServiceOffers::Stop(const skeleton::ServiceBase& service, std::uint16_t araServiceId) {
  for (;;) {
    auto latest = claims_.end();
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      for (auto claim = claims_.begin(); claim != claims_.end(); ++claim) {
        if (claim->service != &service || claim->ara_service_id != araServiceId) {
          continue;
        }
        if (claim->state == Claim::State::kStands) {
          latest = claim;
        } else if (claim->state == Claim::State::kBeingOffered) {
          claim->state = Claim::State::kToBeWithdrawn;
        }
      }
      if (latest == claims_.end()) {
        return;
      }
      latest->state = Claim::State::kBeingWithdrawn;
    }
    latest->adapters.clear();  // nobody else touches them in that state
    GiveUp(latest);
  }
}

// False when the same skeleton offers the instance already, under the same name.
bool ServiceOffers::MakeClaim(Claim wanted, Claims::iterator& claim) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto known = std::find_if(claims_.begin(), claims_.end(), [&](const Claim& other) {
    return other.ara_service_id == wanted.ara_service_id && other.canonical == wanted.canonical;
  });
  if (known == claims_.end()) {
    claim = claims_.insert(claims_.end(), std::move(wanted));
    return true;
  }
  const std::string name = Name(wanted.identifier, wanted.ara_service_id);
  if (known->service != wanted.service) {
    throw IllegalStateException(name + " is offered already, by another skeleton of this process");
  }
  if (known->identifier != wanted.identifier) {
    throw IllegalStateException(name + " is offered already, as \"" + known->identifier.ToString() + "\"");
  }
  if (known->state != Claim::State::kStands) {
    throw IllegalStateException(name + " is being offered or withdrawn by another thread");
  }
  return false;
}

void ServiceOffers::GiveUp(Claims::iterator claim) {
  const std::lock_guard<std::mutex> lock(mutex_);
  claims_.erase(claim);
}

}  // namespace ara::com::internal
