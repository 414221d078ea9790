#pragma once

#include <vector>

#include "ara/com/internal/proxy/field.h"
#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "core_types/visibility.h"
#include "interfaces/energysystem/energysystem_datatypes.h"

namespace kro::services::energysystem {

/// The service interface itself.
class EnergySystem {};

namespace proxy {

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT EnergySystemProxyBase : public ara::com::internal::proxy::ProxyBindingBase, public EnergySystem {
 public:
  template <typename Record>
  using Field = ara::com::internal::proxy::Field<std::vector<Record>>;

  ~EnergySystemProxyBase() override;

  virtual Field<datatypes::DT_highVoltageBatteries_struct>& GethighVoltageBatteries() = 0;
  virtual Field<datatypes::DT_lowVoltageBatteries_struct>& GetlowVoltageBatteries() = 0;
  virtual Field<datatypes::DT_lowVoltageSystemInfo_struct>& GetlowVoltageSystemInfo() = 0;
  virtual Field<datatypes::DT_notifications_struct>& Getnotifications() = 0;
};

}  // namespace proxy
}  // namespace kro::services::energysystem
