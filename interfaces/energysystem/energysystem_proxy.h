#pragma once

#include "ara/com/service_proxy.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "interfaces/energysystem/energysystem_proxy_base.h"

namespace kro::services::energysystem::proxy {

/// The application's access to the vehicle's energy system: batteries, low-voltage system state and notifications.
///
///     const auto handles = EnergySystemProxy::FindService();
///     if (!handles.empty()) {
///       EnergySystemProxy energySystem(handles.front());
///       auto batteries = energySystem.highVoltageBatteries.Get();
///       ...
///
/// A proxy outlives restarts of the service: getters work again and subscriptions come back when the service does.
class EnergySystemProxy
    : public ara::com::ServiceProxy<EnergySystemProxyBase,
                                    energysystem_binding::vsomeip::descriptors::internal::Service::ara_service_id> {
 public:
  explicit EnergySystemProxy(const HandleType& handle) : ServiceProxy(handle) {}

  /// A sequence of records, one per high-voltage battery.
  EnergySystemProxyBase::Field<datatypes::DT_highVoltageBatteries_struct>& highVoltageBatteries =
      GetBinding().GethighVoltageBatteries();
  /// A sequence of records, one per low-voltage battery.
  EnergySystemProxyBase::Field<datatypes::DT_lowVoltageBatteries_struct>& lowVoltageBatteries =
      GetBinding().GetlowVoltageBatteries();
  /// The state of the low-voltage system.
  EnergySystemProxyBase::Field<datatypes::DT_lowVoltageSystemInfo_struct>& lowVoltageSystemInfo =
      GetBinding().GetlowVoltageSystemInfo();
  /// Notifications of the energy system.
  EnergySystemProxyBase::Field<datatypes::DT_notifications_struct>& notifications = GetBinding().Getnotifications();
};

}  // namespace kro::services::energysystem::proxy
