// Written by scripts/generate from interfaces/model/routebasedenergycontents.json.
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

#include <utility>

#include "interfaces/routebasedenergycontents/routebasedenergycontents_service_adapter.h"

namespace kro::services::routebasedenergycontents {

namespace skeleton {

using routebasedenergycontents_binding::vsomeip::descriptors::Interface;

RouteBasedEnergyContentsSkeleton::RouteBasedEnergyContentsSkeleton(ara::com::InstanceIdentifierContainer instances)
    : TypedServiceImplBase(std::move(instances)) {}
RouteBasedEnergyContentsSkeleton::~RouteBasedEnergyContentsSkeleton() { StopOffer<Interface>(); }

void RouteBasedEnergyContentsSkeleton::OfferService() { Offer<Interface>(); }
void RouteBasedEnergyContentsSkeleton::StopOfferService() { StopOffer<Interface>(); }

}  // namespace skeleton

namespace routebasedenergycontents_binding::vsomeip {

RouteBasedEnergyContentsServiceAdapter::RouteBasedEnergyContentsServiceAdapter(
    skeleton::RouteBasedEnergyContentsSkeleton& skeleton, std::uint16_t instanceId)
    : ServiceAdapter(skeleton, instanceId) {}
RouteBasedEnergyContentsServiceAdapter::~RouteBasedEnergyContentsServiceAdapter() = default;

}  // namespace routebasedenergycontents_binding::vsomeip
}  // namespace kro::services::routebasedenergycontents
