#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "core_types/visibility.h"
#include "registry/proxy_factory.h"

namespace ara::com::internal::skeleton {
class ServiceBase;
}

namespace ara::com::internal::vsomeip::skeleton {
class ServiceImplBase;
}

namespace ara::com::internal::vsomeip::runtime {

/// An interface version that must not be used.
struct ServiceVersion {
  std::uint8_t major;
  std::uint32_t minor;
};

/// Where the runtime's SOME/IP binding learns which services the loaded libraries carry.
class VSomeIPServiceMapping {
 public:
  class Mapping;
  class MultiMapping;

  /// The entry of an `ara::com` service id, or null. What a registered lookup throws passes.
  TARN7_EXPORT static const Mapping* GetMappingForServiceId(std::uint16_t araServiceId);
  /// The entries of a SOME/IP service id; empty when there are none.
  TARN7_EXPORT static MultiMapping GetMappingForVSomeIPServiceId(std::uint16_t someipServiceId);
};

/// One service: its identity, and how to make a proxy factory or a service adapter for it. Immutable, with static
/// lifetime.
class VSomeIPServiceMapping::Mapping {
 public:
  virtual ~Mapping() = default;

  /// A new factory for one SOME/IP instance; empty when the service is only provided.
  virtual std::shared_ptr<internal::proxy::ProxyFactory> GetProxy(std::uint16_t instance) const = 0;
  virtual std::uint16_t GetServiceId() const = 0;
  virtual std::uint16_t GetVSomeIPService() const = 0;
  /// A new adapter that serves `service` as one SOME/IP instance; empty when the service is only consumed. Throws
  /// IllegalStateException when `service` is a skeleton of another interface.
  virtual std::unique_ptr<vsomeip::skeleton::ServiceImplBase> GetSkeleton(internal::skeleton::ServiceBase& service,
                                                                          std::uint16_t instance) const = 0;
  virtual std::uint8_t GetVSomeIPServiceVersionMajor() const = 0;
  virtual std::uint32_t GetVSomeIPServiceVersionMinor() const = 0;
  /// What a consumer requires; 0xFFFFFFFF fits any minor version.
  virtual std::uint32_t GetVSomeIPRequiredServiceVersionMinor() const = 0;
  /// Whether the required minor version is a minimum rather than an exact value.
  virtual bool IsMinimumMinorPolicyEnabled() const = 0;
  virtual std::uint32_t GetNumberOfBlacklistedVersions() const = 0;
  virtual const ServiceVersion* GetBlacklistedVersions() const = 0;
};

/// The entries that share one SOME/IP service id, by their `ara::com` service id. Refers to entries, never copies them;
/// they are only ever added.
class VSomeIPServiceMapping::MultiMapping
    : private std::unordered_map<std::uint16_t, std::reference_wrapper<const Mapping>> {
 public:
  using const_iterator = unordered_map::const_iterator;
  using unordered_map::at;
  using unordered_map::count;
  using unordered_map::empty;
  using unordered_map::size;
  const_iterator begin() const noexcept { return unordered_map::begin(); }
  const_iterator end() const noexcept { return unordered_map::end(); }
  const_iterator find(std::uint16_t araServiceId) const { return unordered_map::find(araServiceId); }

  /// Adds an entry. Of two with the same `ara::com` service id the first stays.
  void InsertMapping(const Mapping* mapping) { emplace(mapping->GetServiceId(), *mapping); }
};

/// The lookups of this library's own services.
class AraComVSomeIPServiceMapping {
 public:
  TARN7_EXPORT static const VSomeIPServiceMapping::Mapping* GetMappingForServiceId(std::uint16_t araServiceId);
  TARN7_EXPORT static VSomeIPServiceMapping::MultiMapping GetMappingForVSomeIPServiceId(std::uint16_t someipServiceId);
};

}  // namespace ara::com::internal::vsomeip::runtime
