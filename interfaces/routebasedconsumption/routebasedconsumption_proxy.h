#pragma once

#include "ara/com/service_proxy.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy_base.h"

namespace kro::services::routebasedconsumption::proxy {

/// The application's access to the vehicle's route-based consumption: set-up, consumption values, energies and status.
/// All fields can be read and followed. A proxy outlives restarts of the service.
class RouteBasedConsumptionProxy
    : public ara::com::ServiceProxy<
          RouteBasedConsumptionProxyBase,
          routebasedconsumption_binding::vsomeip::descriptors::internal::Service::ara_service_id> {
 public:
  explicit RouteBasedConsumptionProxy(const HandleType& handle) : ServiceProxy(handle) {}

  /// The state of the consumption service.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_status_struct>& status = GetBinding().Getstatus();
  /// Actions that the customer is asked for.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_customerActionTriggers_struct>& customerActionTriggers =
      GetBinding().GetcustomerActionTriggers();
  /// Set-up: speed limits per road kind.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_setupSpeedLimits_struct>& setupSpeedLimits =
      GetBinding().GetsetupSpeedLimits();
  /// Set-up: thresholds between speed ranges.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_setupSpeedThresholds_struct>& setupSpeedThresholds =
      GetBinding().GetsetupSpeedThresholds();
  /// Set-up: the ratio of driven speed to the limit.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_setupRealSpeedRatios_struct>& setupRealSpeedRatios =
      GetBinding().GetsetupRealSpeedRatios();
  /// The energy that the battery holds.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_energyContents_struct>& energyContents =
      GetBinding().GetenergyContents();
  /// Consumption per kind of driving.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_consumptionValues_struct>& consumptionValues =
      GetBinding().GetconsumptionValues();
  /// Consumers beside the drive.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_additionalConsumers_struct>& additionalConsumers =
      GetBinding().GetadditionalConsumers();
  /// Consumption per slope.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_slopeConsumptionValues_struct>& slopeConsumptionValues =
      GetBinding().GetslopeConsumptionValues();
  /// Consumption per road kind.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_roadConsumptionValues_struct>& roadConsumptionValues =
      GetBinding().GetroadConsumptionValues();
  /// The energy that is left along the route.
  RouteBasedConsumptionProxyBase::Field<datatypes::DT_residualEnergies_struct>& residualEnergies =
      GetBinding().GetresidualEnergies();
};

}  // namespace kro::services::routebasedconsumption::proxy
