// Written by scripts/generate from interfaces/model/energysystem.json.
#pragma once

#include <cstdint>

#include "ara/com/internal/vsomeip/proxy/proxy_impl_base.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_field_impl.h"
#include "core_types/visibility.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "interfaces/energysystem/energysystem_proxy_base.h"

namespace kro::services::energysystem::energysystem_binding::vsomeip {

/// The interface's proxy over SOME/IP. Requests the service instance for as long as it lives.
class TARN7_EXPORT EnergySystemImpl final : public proxy::EnergySystemProxyBase,
                                            public ara::com::internal::vsomeip::proxy::ProxyImplBase {
 public:
  /// `instance` is the SOME/IP instance id. Throws what the platform throws when the connection cannot be started.
  explicit EnergySystemImpl(std::uint16_t instance);
  ~EnergySystemImpl() override;

  proxy::fields::highVoltageBatteries& GethighVoltageBatteries() override { return highVoltageBatteries_; }
  proxy::fields::lowVoltageBatteries& GetlowVoltageBatteries() override { return lowVoltageBatteries_; }
  proxy::fields::lowVoltageSystemInfo& GetlowVoltageSystemInfo() override { return lowVoltageSystemInfo_; }
  proxy::fields::notifications& Getnotifications() override { return notifications_; }

 private:
  template <typename Descriptor>
  using FieldImpl = ara::com::internal::vsomeip::proxy::FieldImpl<Descriptor, typename Descriptor::ValueType>;

  FieldImpl<descriptors::highVoltageBatteries> highVoltageBatteries_{InstanceId()};
  FieldImpl<descriptors::lowVoltageBatteries> lowVoltageBatteries_{InstanceId()};
  FieldImpl<descriptors::lowVoltageSystemInfo> lowVoltageSystemInfo_{InstanceId()};
  FieldImpl<descriptors::notifications> notifications_{InstanceId()};
};

}  // namespace kro::services::energysystem::energysystem_binding::vsomeip
