// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#pragma once

#include "ara/com/service_proxy.h"
#include "interfaces/chargetimemanager/chargetimemanager_descriptors.h"
#include "interfaces/chargetimemanager/chargetimemanager_proxy_base.h"

namespace kro::services::chargetimemanager::proxy {

/// The application's access to the vehicle's charge-time manager: one field, which can be read, followed and written.
///
///     for (const auto& handle : ChargeTimeManagerProxy::FindService()) {
///       ChargeTimeManagerProxy chargeTimeManager(handle);
///       auto answer = chargeTimeManager.chargeTimeCalculations.Get();
///       ...
///
/// A proxy outlives restarts of the service: getters work again and subscriptions come back when the service does.
class ChargeTimeManagerProxy : public ara::com::ServiceProxy<
                                   ChargeTimeManagerProxyBase,
                                   chargetimemanager_binding::vsomeip::descriptors::internal::Service::ara_service_id> {
 public:
  explicit ChargeTimeManagerProxy(const HandleType& handle) : ServiceProxy(handle) {}

  /// Requests for and results of charge-time calculations. Can be written.
  fields::chargeTimeCalculations& chargeTimeCalculations = GetBinding().GetchargeTimeCalculations();
};

}  // namespace kro::services::chargetimemanager::proxy
