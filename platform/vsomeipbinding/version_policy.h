#pragma once

#include <cstdint>
#include <functional>

#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// Whether an offered instance in the service's major version fits what a consumer requires of the minor version.
/// `offersAtLeast` says whether the offered minor version is the given one or higher: that is all that the stack tells.
/// It takes 0xFFFFFFFF for "any minor version".
bool FitsRequiredVersion(const VSomeIPServiceMapping::Mapping& mapping,
                         const std::function<bool(std::uint32_t minor)>& offersAtLeast);

}  // namespace ara::com::internal::vsomeip::runtime
