// Written by scripts/generate from interfaces/model/energysystem.json.
#include "interfaces/energysystem/energysystem_impl.h"

namespace kro::services::energysystem {

proxy::EnergySystemProxyBase::~EnergySystemProxyBase() = default;

namespace energysystem_binding::vsomeip {

EnergySystemImpl::EnergySystemImpl(std::uint16_t instance)
    : ProxyImplBase(descriptors::internal::Service::Instance(instance)) {}
EnergySystemImpl::~EnergySystemImpl() {
  ara::com::internal::vsomeip::proxy::StopHandlers<descriptors::Interface>(*this);
}

}  // namespace energysystem_binding::vsomeip
}  // namespace kro::services::energysystem
