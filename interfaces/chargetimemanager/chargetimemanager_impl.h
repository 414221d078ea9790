// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#pragma once

#include <cstdint>

#include "ara/com/internal/vsomeip/proxy/proxy_impl_base.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_field_impl.h"
#include "core_types/visibility.h"
#include "interfaces/chargetimemanager/chargetimemanager_descriptors.h"
#include "interfaces/chargetimemanager/chargetimemanager_proxy_base.h"

namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip {

/// The interface's proxy over SOME/IP. Requests the service instance for as long as it lives.
class TARN7_EXPORT ChargeTimeManagerImpl final : public proxy::ChargeTimeManagerProxyBase,
                                                 public ara::com::internal::vsomeip::proxy::ProxyImplBase {
 public:
  /// `instance` is the SOME/IP instance id. Throws what the platform throws when the connection cannot be started.
  explicit ChargeTimeManagerImpl(std::uint16_t instance);
  ~ChargeTimeManagerImpl() override;

  proxy::fields::chargeTimeCalculations& GetchargeTimeCalculations() override { return chargeTimeCalculations_; }

 private:
  template <typename Descriptor>
  using MutableFieldImpl =
      ara::com::internal::vsomeip::proxy::MutableFieldImpl<Descriptor, typename Descriptor::ValueType>;

  MutableFieldImpl<descriptors::chargeTimeCalculations> chargeTimeCalculations_{InstanceId()};
};

}  // namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip
