#pragma once

#include <stdexcept>
#include <unistd.h>
#include <vector>

#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// A registry entry whose properties a test chooses.
struct FakeMapping final : VSomeIPServiceMapping::Mapping {
  std::shared_ptr<internal::proxy::ProxyFactory> GetProxy(std::uint16_t) const override { return nullptr; }
  std::uint16_t GetServiceId() const override { return 0x0A11; }
  // Of this process alone, because other tests may run on the same machine at the same time.
  std::uint16_t GetVSomeIPService() const override {
    return static_cast<std::uint16_t>(0x8000 + 2 * (::getpid() & 0x1FFF));
  }
  std::unique_ptr<vsomeip::skeleton::ServiceImplBase> GetSkeleton(internal::skeleton::ServiceBase&,
                                                                  std::uint16_t) const override {
    throw std::logic_error("no test asks for a skeleton");
  }
  std::uint8_t GetVSomeIPServiceVersionMajor() const override { return 3; }
  std::uint32_t GetVSomeIPServiceVersionMinor() const override { return 0; }
  std::uint32_t GetVSomeIPRequiredServiceVersionMinor() const override { return required_minor; }
  bool IsMinimumMinorPolicyEnabled() const override { return is_minimum; }
  std::uint32_t GetNumberOfBlacklistedVersions() const override { return static_cast<std::uint32_t>(blacklist.size()); }
  const ServiceVersion* GetBlacklistedVersions() const override { return blacklist.data(); }

  std::uint32_t required_minor = 0xFFFFFFFF;
  bool is_minimum = false;
  std::vector<ServiceVersion> blacklist;
};

}  // namespace ara::com::internal::vsomeip::runtime
