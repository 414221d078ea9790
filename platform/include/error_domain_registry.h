#pragma once

#include <cstdint>

#include "core_types/error_domain.h"
#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::common::error_domains {

/// The error domains that may arrive from the network.
class ARA_PLATFORM_API Registry {
 public:
  /// The domain with the given id. The reference stays valid until the process ends, for an unknown id too.
  static const ara::core::ErrorDomain& getDomain(const std::uint64_t& id);
};

}  // namespace ara::com::internal::vsomeip::common::error_domains
