#include "registry/service_mapping.h"

#include "registry/lookup_registry.h"

namespace ara::com::internal::vsomeip::runtime {

namespace {

// Built in this order when the library is loaded, destroyed in reverse when it is unloaded. Never changed: reading them
// takes no lock.
const ServiceIdRegistry service_id_registry{&AraComVSomeIPServiceMapping::GetMappingForServiceId};
const VSomeIPServiceIdRegistry vsomeip_service_id_registry{&AraComVSomeIPServiceMapping::GetMappingForVSomeIPServiceId};

}  // namespace

const VSomeIPServiceMapping::Mapping* VSomeIPServiceMapping::GetMappingForServiceId(std::uint16_t araServiceId) {
  return LookUp(service_id_registry, araServiceId);
}

VSomeIPServiceMapping::MultiMapping VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(
    std::uint16_t someipServiceId) {
  return LookUp(vsomeip_service_id_registry, someipServiceId);
}

}  // namespace ara::com::internal::vsomeip::runtime
