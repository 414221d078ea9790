#pragma once

#include <vector>

#include "ara/com/internal/proxy/field.h"
#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "core_types/visibility.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_datatypes.h"

namespace kro::services::routebasedconsumption {

/// The service interface itself.
class RouteBasedConsumption {};

namespace proxy {

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT RouteBasedConsumptionProxyBase : public ara::com::internal::proxy::ProxyBindingBase,
                                                    public RouteBasedConsumption {
 public:
  template <typename Record>
  using Field = ara::com::internal::proxy::Field<std::vector<Record>>;

  ~RouteBasedConsumptionProxyBase() override;

  virtual Field<datatypes::DT_status_struct>& Getstatus() = 0;
  virtual Field<datatypes::DT_customerActionTriggers_struct>& GetcustomerActionTriggers() = 0;
  virtual Field<datatypes::DT_setupSpeedLimits_struct>& GetsetupSpeedLimits() = 0;
  virtual Field<datatypes::DT_setupSpeedThresholds_struct>& GetsetupSpeedThresholds() = 0;
  virtual Field<datatypes::DT_setupRealSpeedRatios_struct>& GetsetupRealSpeedRatios() = 0;
  virtual Field<datatypes::DT_energyContents_struct>& GetenergyContents() = 0;
  virtual Field<datatypes::DT_consumptionValues_struct>& GetconsumptionValues() = 0;
  virtual Field<datatypes::DT_additionalConsumers_struct>& GetadditionalConsumers() = 0;
  virtual Field<datatypes::DT_slopeConsumptionValues_struct>& GetslopeConsumptionValues() = 0;
  virtual Field<datatypes::DT_roadConsumptionValues_struct>& GetroadConsumptionValues() = 0;
  virtual Field<datatypes::DT_residualEnergies_struct>& GetresidualEnergies() = 0;
};

}  // namespace proxy
}  // namespace kro::services::routebasedconsumption
