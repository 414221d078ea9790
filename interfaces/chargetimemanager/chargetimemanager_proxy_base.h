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

/// What a binding of the interface offers to the application's proxy.
class TARN7_EXPORT ChargeTimeManagerProxyBase : public ara::com::internal::proxy::ProxyBindingBase,
                                                public ChargeTimeManager {
 public:
  template <typename Record>
  using MutableField = ara::com::internal::proxy::MutableField<std::vector<Record>>;

  ~ChargeTimeManagerProxyBase() override;

  virtual MutableField<datatypes::DT_chargeTimeCalculations_struct>& GetchargeTimeCalculations() = 0;
};

}  // namespace proxy
}  // namespace kro::services::chargetimemanager
