// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
#pragma once

#include <cstdint>

#include "ara/com/internal/vsomeip/proxy/proxy_impl_base.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_field_impl.h"
#include "core_types/visibility.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy_base.h"

namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip {

/// The interface's proxy over SOME/IP. Requests the service instance for as long as it lives.
class TARN7_EXPORT RouteBasedConsumptionImpl final : public proxy::RouteBasedConsumptionProxyBase,
                                                     public ara::com::internal::vsomeip::proxy::ProxyImplBase {
 public:
  /// `instance` is the SOME/IP instance id. Throws what the platform throws when the connection cannot be started.
  explicit RouteBasedConsumptionImpl(std::uint16_t instance);
  ~RouteBasedConsumptionImpl() override;

  proxy::fields::status& Getstatus() override { return status_; }
  proxy::fields::customerActionTriggers& GetcustomerActionTriggers() override { return customerActionTriggers_; }
  proxy::fields::setupSpeedLimits& GetsetupSpeedLimits() override { return setupSpeedLimits_; }
  proxy::fields::setupSpeedThresholds& GetsetupSpeedThresholds() override { return setupSpeedThresholds_; }
  proxy::fields::setupRealSpeedRatios& GetsetupRealSpeedRatios() override { return setupRealSpeedRatios_; }
  proxy::fields::energyContents& GetenergyContents() override { return energyContents_; }
  proxy::fields::consumptionValues& GetconsumptionValues() override { return consumptionValues_; }
  proxy::fields::additionalConsumers& GetadditionalConsumers() override { return additionalConsumers_; }
  proxy::fields::slopeConsumptionValues& GetslopeConsumptionValues() override { return slopeConsumptionValues_; }
  proxy::fields::roadConsumptionValues& GetroadConsumptionValues() override { return roadConsumptionValues_; }
  proxy::fields::residualEnergies& GetresidualEnergies() override { return residualEnergies_; }

 private:
  template <typename Descriptor>
  using FieldImpl = ara::com::internal::vsomeip::proxy::FieldImpl<Descriptor, typename Descriptor::ValueType>;

  FieldImpl<descriptors::status> status_{InstanceId()};
  FieldImpl<descriptors::customerActionTriggers> customerActionTriggers_{InstanceId()};
  FieldImpl<descriptors::setupSpeedLimits> setupSpeedLimits_{InstanceId()};
  FieldImpl<descriptors::setupSpeedThresholds> setupSpeedThresholds_{InstanceId()};
  FieldImpl<descriptors::setupRealSpeedRatios> setupRealSpeedRatios_{InstanceId()};
  FieldImpl<descriptors::energyContents> energyContents_{InstanceId()};
  FieldImpl<descriptors::consumptionValues> consumptionValues_{InstanceId()};
  FieldImpl<descriptors::additionalConsumers> additionalConsumers_{InstanceId()};
  FieldImpl<descriptors::slopeConsumptionValues> slopeConsumptionValues_{InstanceId()};
  FieldImpl<descriptors::roadConsumptionValues> roadConsumptionValues_{InstanceId()};
  FieldImpl<descriptors::residualEnergies> residualEnergies_{InstanceId()};
};

}  // namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip
