#include "platform/vsomeipbinding/version_policy.h"

#include <vsomeip/vsomeip.hpp>

namespace ara::com::internal::vsomeip::runtime {

namespace {

bool OffersExactly(std::uint32_t minor, const std::function<bool(std::uint32_t)>& offersAtLeast) {
  const std::uint32_t next = minor + 1;
  return offersAtLeast(minor) && (next == ::vsomeip::ANY_MINOR || !offersAtLeast(next));
}

bool IsBlacklisted(const VSomeIPServiceMapping::Mapping& mapping,
                   const std::function<bool(std::uint32_t)>& offersAtLeast) {
  const ServiceVersion* versions = mapping.GetBlacklistedVersions();
  for (std::uint32_t i = 0; i < mapping.GetNumberOfBlacklistedVersions(); ++i) {
    if (versions[i].major == mapping.GetVSomeIPServiceVersionMajor() &&
        OffersExactly(versions[i].minor, offersAtLeast)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool FitsRequiredVersion(const VSomeIPServiceMapping::Mapping& mapping,
                         const std::function<bool(std::uint32_t minor)>& offersAtLeast) {
  const std::uint32_t required = mapping.GetVSomeIPRequiredServiceVersionMinor();
  const bool is_minimum = required == ::vsomeip::ANY_MINOR || mapping.IsMinimumMinorPolicyEnabled();
  const bool fits = is_minimum ? offersAtLeast(required) : OffersExactly(required, offersAtLeast);
  return fits && !IsBlacklisted(mapping, offersAtLeast);
}

}  // namespace ara::com::internal::vsomeip::runtime
