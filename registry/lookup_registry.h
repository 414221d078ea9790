#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// Lookups of the sets of services that a library carries, searched from first to last: the first that knows a service
/// answers alone. What a lookup throws passes.
using ServiceIdRegistry = std::vector<std::function<const VSomeIPServiceMapping::Mapping*(std::uint16_t)>>;
using VSomeIPServiceIdRegistry = std::vector<std::function<VSomeIPServiceMapping::MultiMapping(std::uint16_t)>>;

inline const VSomeIPServiceMapping::Mapping* LookUp(const ServiceIdRegistry& registry, std::uint16_t araServiceId) {
  for (const auto& registered : registry) {
    const auto lookup = registered;
    if (const auto* const mapping = lookup(araServiceId)) {
      return mapping;
    }
  }
  return nullptr;
}

inline VSomeIPServiceMapping::MultiMapping LookUp(const VSomeIPServiceIdRegistry& registry,
                                                  std::uint16_t someipServiceId) {
  for (const auto& registered : registry) {
    const auto lookup = registered;
    if (auto mappings = lookup(someipServiceId); !mappings.empty()) {
      return mappings;
    }
  }
  return {};
}

}  // namespace ara::com::internal::vsomeip::runtime
