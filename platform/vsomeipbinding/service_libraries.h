#pragma once

#include <cstdint>

#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// The registry entry of an `ara::com` service in any library that is loaded now, whichever way; null when none carries
/// it. A library in which something was found stays loaded.
const VSomeIPServiceMapping::Mapping* FindMapping(std::uint16_t araServiceId);

}  // namespace ara::com::internal::vsomeip::runtime
