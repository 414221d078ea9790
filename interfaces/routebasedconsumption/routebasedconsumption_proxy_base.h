// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
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

/// The types of the fields. That of a field's value is `fields::status::FieldType`.
namespace fields {
using status = ara::com::internal::proxy::Field<std::vector<datatypes::DT_status_struct>>;
using customerActionTriggers =
    ara::com::internal::proxy::Field<std::vector<datatypes::DT_customerActionTriggers_struct>>;
using setupSpeedLimits = ara::com::internal::proxy::Field<std::vector<datatypes::DT_setupSpeedLimits_struct>>;
using setupSpeedThresholds = ara::com::internal::proxy::Field<std::vector<datatypes::DT_setupSpeedThresholds_struct>>;
using setupRealSpeedRatios = ara::com::internal::proxy::Field<std::vector<datatypes::DT_setupRealSpeedRatios_struct>>;
using energyContents = ara::com::internal::proxy::Field<std::vector<datatypes::DT_energyContents_struct>>;
using consumptionValues = ara::com::internal::proxy::Field<std::vector<datatypes::DT_consumptionValues_struct>>;
using additionalConsumers = ara::com::internal::proxy::Field<std::vector<datatypes::DT_additionalConsumers_struct>>;
using slopeConsumptionValues =
    ara::com::internal::proxy::Field<std::vector<datatypes::DT_slopeConsumptionValues_struct>>;
using roadConsumptionValues = ara::com::internal::proxy::Field<std::vector<datatypes::DT_roadConsumptionValues_struct>>;
using residualEnergies = ara::com::internal::proxy::Field<std::vector<datatypes::DT_residualEnergies_struct>>;
}  // namespace fields

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT RouteBasedConsumptionProxyBase : public ara::com::internal::proxy::ProxyBindingBase,
                                                    public RouteBasedConsumption {
 public:
  ~RouteBasedConsumptionProxyBase() override;

  virtual fields::status& Getstatus() = 0;
  virtual fields::customerActionTriggers& GetcustomerActionTriggers() = 0;
  virtual fields::setupSpeedLimits& GetsetupSpeedLimits() = 0;
  virtual fields::setupSpeedThresholds& GetsetupSpeedThresholds() = 0;
  virtual fields::setupRealSpeedRatios& GetsetupRealSpeedRatios() = 0;
  virtual fields::energyContents& GetenergyContents() = 0;
  virtual fields::consumptionValues& GetconsumptionValues() = 0;
  virtual fields::additionalConsumers& GetadditionalConsumers() = 0;
  virtual fields::slopeConsumptionValues& GetslopeConsumptionValues() = 0;
  virtual fields::roadConsumptionValues& GetroadConsumptionValues() = 0;
  virtual fields::residualEnergies& GetresidualEnergies() = 0;
};

}  // namespace proxy
}  // namespace kro::services::routebasedconsumption
