#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

namespace {

// Built in this order when the library is loaded, destroyed in reverse when it is unloaded.
std::vector<ServiceIdLookup> service_id_registry{&AraComVSomeIPServiceMapping::GetMappingForServiceId};
std::vector<VSomeIPServiceIdLookup> vsomeip_service_id_registry{
    &AraComVSomeIPServiceMapping::GetMappingForVSomeIPServiceId};

}  // namespace

std::vector<ServiceIdLookup>& ServiceIdRegistry() { return service_id_registry; }
std::vector<VSomeIPServiceIdLookup>& VSomeIPServiceIdRegistry() { return vsomeip_service_id_registry; }

const VSomeIPServiceMapping::Mapping* VSomeIPServiceMapping::GetMappingForServiceId(std::uint16_t araServiceId) {
  for (const auto& registered : service_id_registry) {
    const auto lookup = registered;
    if (const Mapping* const mapping = lookup(araServiceId)) {
      return mapping;
    }
  }
  return nullptr;
}

VSomeIPServiceMapping::MultiMapping VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(
    std::uint16_t someipServiceId) {
  for (const auto& registered : vsomeip_service_id_registry) {
    const auto lookup = registered;
    if (MultiMapping mappings = lookup(someipServiceId); !mappings.empty()) {
      return mappings;
    }
  }
  return {};
}

}  // namespace ara::com::internal::vsomeip::runtime
