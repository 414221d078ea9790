#include "platform/com/service_offers.h"

#include <algorithm>

namespace ara::com::internal {

bool ServiceOffers::Offer(skeleton::ServiceBase& service, std::uint16_t araServiceId,
                          const InstanceIdentifier& instance, const std::vector<ServiceBinding*>& bindings) {
  const Key key{&service, araServiceId};
  if (!Reserve(key, instance)) {
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
    Store(key, instance, {});
    throw;
  }
  const bool offered = !adapters.empty();
  Store(key, instance, std::move(adapters));
  return offered;
}

void ServiceOffers::Stop(const skeleton::ServiceBase& service, std::uint16_t araServiceId) {
  std::vector<Instance> instances;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (auto node = offers_.extract(Key{&service, araServiceId})) {
      instances = std::move(node.mapped());
    }
  }
  while (!instances.empty()) {
    instances.pop_back();
  }
}

// False when the instance is offered, or being offered, already.
bool ServiceOffers::Reserve(const Key& key, const InstanceIdentifier& instance) {
  const std::lock_guard<std::mutex> lock(mutex_);
  auto& instances = offers_[key];
  const bool exists = std::any_of(instances.begin(), instances.end(),
                                  [&](const Instance& other) { return other.identifier == instance; });
  if (!exists) {
    instances.push_back({instance, {}});
  }
  return !exists;
}

// Puts the adapters in the reserved place, or gives the place back where there are none. Where the offer was withdrawn
// meanwhile, the adapters are destroyed at once.
void ServiceOffers::Store(const Key& key, const InstanceIdentifier& instance, Adapters adapters) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto offer = offers_.find(key);
  if (offer == offers_.end()) {
    return;  // the parameter is destroyed after the lock is released
  }
  auto& instances = offer->second;
  const auto place = std::find_if(instances.begin(), instances.end(),
                                  [&](const Instance& other) { return other.identifier == instance; });
  if (place != instances.end() && adapters.empty()) {
    instances.erase(place);
  } else if (place != instances.end()) {
    place->adapters = std::move(adapters);
  }
  if (instances.empty()) {
    offers_.erase(offer);
  }
}

}  // namespace ara::com::internal
