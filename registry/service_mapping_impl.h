#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <typeinfo>

#include "ara/com/internal/skeleton/service_base.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "core_types/com_exception.h"
#include "platform/include/transport_identifier.h"
#include "registry/proxy_factory_impl.h"
#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// Marks a service that the library only provides.
struct NoProxy {};
/// Marks a service that the library only consumes.
struct NoAdapter {};

/// The registry entry of one service: everything that it says is a template argument, so an object carries nothing but
/// its type.
template <std::uint16_t AraServiceId, std::uint16_t SomeIpServiceId, std::uint8_t Major, std::uint32_t Minor,
          std::uint32_t RequiredMinor, bool MinimumMinorPolicy, std::uint32_t BlacklistedVersionCount,
          const ServiceVersion* BlacklistedVersions, typename Proxy, typename Adapter>
class ServiceMappingImpl final : public VSomeIPServiceMapping::Mapping {
 public:
  constexpr ServiceMappingImpl() noexcept = default;

  std::shared_ptr<internal::proxy::ProxyFactory> GetProxy(std::uint16_t instance) const override {
    if constexpr (std::is_same_v<Proxy, NoProxy>) {
      return nullptr;
    } else {
      return std::make_shared<ProxyFactoryImpl<Proxy>>(common::FromTransportIdentifier(instance));
    }
  }
  std::uint16_t GetServiceId() const override { return AraServiceId; }
  std::uint16_t GetVSomeIPService() const override { return SomeIpServiceId; }
  std::unique_ptr<vsomeip::skeleton::ServiceImplBase> GetSkeleton(
      [[maybe_unused]] internal::skeleton::ServiceBase& service,
      [[maybe_unused]] std::uint16_t instance) const override {
    if constexpr (std::is_same_v<Adapter, NoAdapter>) {
      return nullptr;
    } else {
      try {
        return std::make_unique<Adapter>(dynamic_cast<typename Adapter::SkeletonType&>(service), instance);
      } catch (const std::bad_cast&) {
        throw IllegalStateException("Given service interface does not fit to the binding adapter!");
      }
    }
  }
  std::uint8_t GetVSomeIPServiceVersionMajor() const override { return Major; }
  std::uint32_t GetVSomeIPServiceVersionMinor() const override { return Minor; }
  std::uint32_t GetVSomeIPRequiredServiceVersionMinor() const override { return RequiredMinor; }
  bool IsMinimumMinorPolicyEnabled() const override { return MinimumMinorPolicy; }
  std::uint32_t GetNumberOfBlacklistedVersions() const override { return BlacklistedVersionCount; }
  const ServiceVersion* GetBlacklistedVersions() const override { return BlacklistedVersions; }
};

}  // namespace ara::com::internal::vsomeip::runtime
