// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#pragma once

#include <vector>

#include "ara/com/internal/proxy/field.h"
#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "core_types/visibility.h"
#include "interfaces/chargetimemanager/chargetimemanager_datatypes.h"

namespace kro::services::chargetimemanager {

/// The service interface itself.
class ChargeTimeManager {};

namespace proxy {

/// The types of the fields. That of a field's value is `fields::chargeTimeCalculations::FieldType`.
namespace fields {
using chargeTimeCalculations =
    ara::com::internal::proxy::MutableField<std::vector<datatypes::DT_chargeTimeCalculations_struct>>;
}  // namespace fields

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT ChargeTimeManagerProxyBase : public ara::com::internal::proxy::ProxyBindingBase,
                                                public ChargeTimeManager {
 public:
  ~ChargeTimeManagerProxyBase() override;

  virtual fields::chargeTimeCalculations& GetchargeTimeCalculations() = 0;
};

}  // namespace proxy
}  // namespace kro::services::chargetimemanager
