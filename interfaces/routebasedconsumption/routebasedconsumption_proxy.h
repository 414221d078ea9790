// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
#pragma once

#include "ara/com/service_proxy.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy_base.h"

namespace kro::services::routebasedconsumption::proxy {

/// The application's access to the vehicle's route-based consumption: set-up, consumption values, energies and status.
///
///     for (const auto& handle : RouteBasedConsumptionProxy::FindService()) {
///       RouteBasedConsumptionProxy routeBasedConsumption(handle);
///       auto answer = routeBasedConsumption.status.Get();
///       ...
///
/// A proxy outlives restarts of the service: getters work again and subscriptions come back when the service does.
class RouteBasedConsumptionProxy
    : public ara::com::ServiceProxy<
          RouteBasedConsumptionProxyBase,
          routebasedconsumption_binding::vsomeip::descriptors::internal::Service::ara_service_id> {
 public:
  explicit RouteBasedConsumptionProxy(const HandleType& handle) : ServiceProxy(handle) {}

  /// The state of the consumption service.
  fields::status& status = GetBinding().Getstatus();
  /// Actions that the customer is asked for.
  fields::customerActionTriggers& customerActionTriggers = GetBinding().GetcustomerActionTriggers();
  /// Set-up: speed limits.
  fields::setupSpeedLimits& setupSpeedLimits = GetBinding().GetsetupSpeedLimits();
  /// Set-up: speed thresholds.
  fields::setupSpeedThresholds& setupSpeedThresholds = GetBinding().GetsetupSpeedThresholds();
  /// Set-up: real-speed ratios.
  fields::setupRealSpeedRatios& setupRealSpeedRatios = GetBinding().GetsetupRealSpeedRatios();
  /// Energy contents.
  fields::energyContents& energyContents = GetBinding().GetenergyContents();
  /// Consumption values.
  fields::consumptionValues& consumptionValues = GetBinding().GetconsumptionValues();
  /// Consumers beside the drive.
  fields::additionalConsumers& additionalConsumers = GetBinding().GetadditionalConsumers();
  /// Consumption per slope.
  fields::slopeConsumptionValues& slopeConsumptionValues = GetBinding().GetslopeConsumptionValues();
  /// Consumption per road.
  fields::roadConsumptionValues& roadConsumptionValues = GetBinding().GetroadConsumptionValues();
  /// Residual energies.
  fields::residualEnergies& residualEnergies = GetBinding().GetresidualEnergies();
};

}  // namespace kro::services::routebasedconsumption::proxy
