// Written by scripts/generate from interfaces/model/psd2.json.
#include "interfaces/psd2/psd2_skeleton.h"

#include <utility>

#include "interfaces/psd2/psd2_service_adapter.h"

namespace kro::services::psd2 {

namespace skeleton {

using psd2_binding::vsomeip::descriptors::Interface;

Psd2Skeleton::Psd2Skeleton(ara::com::InstanceIdentifierContainer instances)
    : TypedServiceImplBase(std::move(instances)) {}
Psd2Skeleton::~Psd2Skeleton() { StopOffer<Interface>(); }

void Psd2Skeleton::OfferService() { Offer<Interface>(); }
void Psd2Skeleton::StopOfferService() { StopOffer<Interface>(); }

}  // namespace skeleton

namespace psd2_binding::vsomeip {

Psd2ServiceAdapter::Psd2ServiceAdapter(skeleton::Psd2Skeleton& skeleton, std::uint16_t instanceId)
    : ServiceAdapter(skeleton, instanceId) {}
Psd2ServiceAdapter::~Psd2ServiceAdapter() = default;

}  // namespace psd2_binding::vsomeip
}  // namespace kro::services::psd2
