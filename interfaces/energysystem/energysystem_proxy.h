// Written by scripts/generate from interfaces/model/energysystem.json.
#pragma once

#include "ara/com/service_proxy.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "interfaces/energysystem/energysystem_proxy_base.h"

namespace kro::services::energysystem::proxy {

/// The application's access to the vehicle's energy system: batteries, low-voltage system state and notifications.
///
///     for (const auto& handle : EnergySystemProxy::FindService()) {
///       EnergySystemProxy energySystem(handle);
///       auto answer = energySystem.highVoltageBatteries.Get();
///       ...
///
/// A proxy outlives restarts of the service: getters work again and subscriptions come back when the service does.
class EnergySystemProxy
    : public ara::com::ServiceProxy<EnergySystemProxyBase,
                                    energysystem_binding::vsomeip::descriptors::internal::Service::ara_service_id> {
 public:
  explicit EnergySystemProxy(const HandleType& handle) : ServiceProxy(handle) {}

  /// A sequence of records, one per high-voltage battery.
  fields::highVoltageBatteries& highVoltageBatteries = GetBinding().GethighVoltageBatteries();
  /// A sequence of records, one per low-voltage battery.
  fields::lowVoltageBatteries& lowVoltageBatteries = GetBinding().GetlowVoltageBatteries();
  /// The state of the low-voltage system.
  fields::lowVoltageSystemInfo& lowVoltageSystemInfo = GetBinding().GetlowVoltageSystemInfo();
  /// Notifications of the energy system.
  fields::notifications& notifications = GetBinding().Getnotifications();
};

}  // namespace kro::services::energysystem::proxy
