#pragma once

#include <cstdint>

namespace ara::com::internal::vsomeip::common {

/// One instance of a SOME/IP service with its interface version. Default-constructed it is the no-service value: every
/// field all ones.
struct ServiceInstance {
  std::uint16_t service = 0xFFFF;
  std::uint16_t instance = 0xFFFF;
  std::uint8_t major = 0xFF;
  std::uint32_t minor = 0xFFFFFFFF;

  bool operator==(const ServiceInstance& other) const noexcept {
    return service == other.service && instance == other.instance && major == other.major && minor == other.minor;
  }
  bool operator!=(const ServiceInstance& other) const noexcept { return !(*this == other); }
};

}  // namespace ara::com::internal::vsomeip::common
