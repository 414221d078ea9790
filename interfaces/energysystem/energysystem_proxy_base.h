// Written by scripts/generate from interfaces/model/energysystem.json.
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

/// The types of the fields. That of a field's value is `fields::highVoltageBatteries::FieldType`.
namespace fields {
using highVoltageBatteries = ara::com::internal::proxy::Field<std::vector<datatypes::DT_highVoltageBatteries_struct>>;
using lowVoltageBatteries = ara::com::internal::proxy::Field<std::vector<datatypes::DT_lowVoltageBatteries_struct>>;
using lowVoltageSystemInfo = ara::com::internal::proxy::Field<std::vector<datatypes::DT_lowVoltageSystemInfo_struct>>;
using notifications = ara::com::internal::proxy::Field<std::vector<datatypes::DT_notifications_struct>>;
}  // namespace fields

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT EnergySystemProxyBase : public ara::com::internal::proxy::ProxyBindingBase, public EnergySystem {
 public:
  ~EnergySystemProxyBase() override;

  virtual fields::highVoltageBatteries& GethighVoltageBatteries() = 0;
  virtual fields::lowVoltageBatteries& GetlowVoltageBatteries() = 0;
  virtual fields::lowVoltageSystemInfo& GetlowVoltageSystemInfo() = 0;
  virtual fields::notifications& Getnotifications() = 0;
};

}  // namespace proxy
}  // namespace kro::services::energysystem
