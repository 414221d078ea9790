// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
#pragma once

#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/common/service_descriptor.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy_base.h"

/// The identity of the routebasedconsumption interface and of its fields.
namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 27103, SOME/IP service 0x604A, version 2.0.
struct Service : common::ServiceDescriptor<27103, 0x604A, 2, 0> {
  static constexpr const char* name = "routebasedconsumption";
  static constexpr const char* meta_model_path = "/kro/services/routebasedconsumption/RouteBasedConsumption";
};
}  // namespace internal

template <std::uint16_t GetterMethodId, typename Record>
using Field = common::FieldDescriptor<internal::Service, GetterMethodId, std::vector<Record>>;

struct status : Field<0x4010, datatypes::DT_status_struct> {
  static constexpr const char* name = "status";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::Getstatus;
};
struct customerActionTriggers : Field<0x4020, datatypes::DT_customerActionTriggers_struct> {
  static constexpr const char* name = "customerActionTriggers";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetcustomerActionTriggers;
};
struct setupSpeedLimits : Field<0x4030, datatypes::DT_setupSpeedLimits_struct> {
  static constexpr const char* name = "setupSpeedLimits";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetsetupSpeedLimits;
};
struct setupSpeedThresholds : Field<0x4040, datatypes::DT_setupSpeedThresholds_struct> {
  static constexpr const char* name = "setupSpeedThresholds";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetsetupSpeedThresholds;
};
struct setupRealSpeedRatios : Field<0x4050, datatypes::DT_setupRealSpeedRatios_struct> {
  static constexpr const char* name = "setupRealSpeedRatios";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetsetupRealSpeedRatios;
};
struct energyContents : Field<0x4060, datatypes::DT_energyContents_struct> {
  static constexpr const char* name = "energyContents";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetenergyContents;
};
struct consumptionValues : Field<0x4070, datatypes::DT_consumptionValues_struct> {
  static constexpr const char* name = "consumptionValues";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetconsumptionValues;
};
struct additionalConsumers : Field<0x4080, datatypes::DT_additionalConsumers_struct> {
  static constexpr const char* name = "additionalConsumers";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetadditionalConsumers;
};
struct slopeConsumptionValues : Field<0x4090, datatypes::DT_slopeConsumptionValues_struct> {
  static constexpr const char* name = "slopeConsumptionValues";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetslopeConsumptionValues;
};
struct roadConsumptionValues : Field<0x40A0, datatypes::DT_roadConsumptionValues_struct> {
  static constexpr const char* name = "roadConsumptionValues";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetroadConsumptionValues;
};
struct residualEnergies : Field<0x40B0, datatypes::DT_residualEnergies_struct> {
  static constexpr const char* name = "residualEnergies";
  static constexpr auto accessor = &proxy::RouteBasedConsumptionProxyBase::GetresidualEnergies;
};

/// The interface as a whole: its fields in the order of the binding class.
struct Interface {
  using Service = internal::Service;
  using ProxyBase = proxy::RouteBasedConsumptionProxyBase;
  using Fields = common::TypeList<status, customerActionTriggers, setupSpeedLimits, setupSpeedThresholds,
                                  setupRealSpeedRatios, energyContents, consumptionValues, additionalConsumers,
                                  slopeConsumptionValues, roadConsumptionValues, residualEnergies>;
};

}  // namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors
