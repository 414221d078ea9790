// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#pragma once

#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/common/service_descriptor.h"
#include "interfaces/chargetimemanager/chargetimemanager_proxy_base.h"

/// The identity of the chargetimemanager interface and of its fields.
namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 22592, SOME/IP service 0x60E8, version 2.0.
struct Service : common::ServiceDescriptor<22592, 0x60E8, 2, 0> {
  static constexpr const char* name = "chargetimemanager";
  static constexpr const char* meta_model_path = "/kro/services/chargetimemanager/ChargeTimeManager";
};
}  // namespace internal

template <std::uint16_t GetterMethodId, typename Record>
using MutableField = common::MutableFieldDescriptor<internal::Service, GetterMethodId, std::vector<Record>>;

struct chargeTimeCalculations : MutableField<0x4010, datatypes::DT_chargeTimeCalculations_struct> {
  static constexpr const char* name = "chargeTimeCalculations";
  static constexpr auto accessor = &proxy::ChargeTimeManagerProxyBase::GetchargeTimeCalculations;
};

/// The interface as a whole: its fields in the order of the binding class.
struct Interface {
  using Service = internal::Service;
  using ProxyBase = proxy::ChargeTimeManagerProxyBase;
  using Fields = common::TypeList<chargeTimeCalculations>;
};

}  // namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors
