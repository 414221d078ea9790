// Written by scripts/generate from interfaces/model/energysystem.json.
#pragma once

#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/common/service_descriptor.h"
#include "interfaces/energysystem/energysystem_proxy_base.h"

/// The identity of the energysystem interface and of its fields.
namespace kro::services::energysystem::energysystem_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 56470, SOME/IP service 0x6005, version 4.3.
struct Service : common::ServiceDescriptor<56470, 0x6005, 4, 3> {
  static constexpr const char* name = "energysystem";
  static constexpr const char* meta_model_path = "/kro/services/energysystem/EnergySystem";
};
}  // namespace internal

template <std::uint16_t GetterMethodId, typename Record>
using Field = common::FieldDescriptor<internal::Service, GetterMethodId, std::vector<Record>>;

struct highVoltageBatteries : Field<0x4020, datatypes::DT_highVoltageBatteries_struct> {
  static constexpr const char* name = "highVoltageBatteries";
  static constexpr auto accessor = &proxy::EnergySystemProxyBase::GethighVoltageBatteries;
};
struct lowVoltageBatteries : Field<0x4030, datatypes::DT_lowVoltageBatteries_struct> {
  static constexpr const char* name = "lowVoltageBatteries";
  static constexpr auto accessor = &proxy::EnergySystemProxyBase::GetlowVoltageBatteries;
};
struct lowVoltageSystemInfo : Field<0x4040, datatypes::DT_lowVoltageSystemInfo_struct> {
  static constexpr const char* name = "lowVoltageSystemInfo";
  static constexpr auto accessor = &proxy::EnergySystemProxyBase::GetlowVoltageSystemInfo;
};
struct notifications : Field<0x4010, datatypes::DT_notifications_struct> {
  static constexpr const char* name = "notifications";
  static constexpr auto accessor = &proxy::EnergySystemProxyBase::Getnotifications;
};

/// The interface as a whole: its fields in the order of the binding class.
struct Interface {
  using Service = internal::Service;
  using ProxyBase = proxy::EnergySystemProxyBase;
  using Fields = common::TypeList<highVoltageBatteries, lowVoltageBatteries, lowVoltageSystemInfo, notifications>;
};

}  // namespace kro::services::energysystem::energysystem_binding::vsomeip::descriptors
