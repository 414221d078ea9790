#pragma once

#include <cstdint>

#include "platform/include/service_instance.h"
#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::common {

/// The identity of a service, which its registry entry, proxy binding, skeleton and adapter read.
template <std::uint16_t AraServiceId, std::uint16_t SomeIpServiceId, std::uint8_t Major, std::uint32_t Minor>
struct ServiceDescriptor {
  static constexpr std::uint16_t ara_service_id = AraServiceId;
  static constexpr std::uint16_t service_id = SomeIpServiceId;
  static constexpr std::uint8_t major_version = Major;
  static constexpr std::uint32_t minor_version = Minor;
  /// Any minor version of a provider will do.
  static constexpr std::uint32_t required_minor_version = 0xFFFFFFFF;
  static constexpr bool minimum_minor_policy = false;
  static constexpr std::uint32_t blacklisted_version_count = 0;
  /// Never read while the count is 0: there so that the registry entry has a table to point at.
  static constexpr runtime::ServiceVersion blacklisted_versions[1] = {};

  static ServiceInstance Instance(std::uint16_t instance) noexcept { return {SomeIpServiceId, instance, Major, Minor}; }
};

}  // namespace ara::com::internal::vsomeip::common
