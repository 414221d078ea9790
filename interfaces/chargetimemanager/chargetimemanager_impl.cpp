// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#include "interfaces/chargetimemanager/chargetimemanager_impl.h"

namespace kro::services::chargetimemanager {

proxy::ChargeTimeManagerProxyBase::~ChargeTimeManagerProxyBase() = default;

namespace chargetimemanager_binding::vsomeip {

ChargeTimeManagerImpl::ChargeTimeManagerImpl(std::uint16_t instance)
    : ProxyImplBase(descriptors::internal::Service::Instance(instance)) {}
ChargeTimeManagerImpl::~ChargeTimeManagerImpl() {
  ara::com::internal::vsomeip::proxy::StopHandlers<descriptors::Interface>(*this);
}

}  // namespace chargetimemanager_binding::vsomeip
}  // namespace kro::services::chargetimemanager
