// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
#include "interfaces/routebasedconsumption/routebasedconsumption_impl.h"

namespace kro::services::routebasedconsumption {

proxy::RouteBasedConsumptionProxyBase::~RouteBasedConsumptionProxyBase() = default;

namespace routebasedconsumption_binding::vsomeip {

RouteBasedConsumptionImpl::RouteBasedConsumptionImpl(std::uint16_t instance)
    : ProxyImplBase(descriptors::internal::Service::Instance(instance)) {}
RouteBasedConsumptionImpl::~RouteBasedConsumptionImpl() {
  ara::com::internal::vsomeip::proxy::StopHandlers<descriptors::Interface>(*this);
}

}  // namespace routebasedconsumption_binding::vsomeip
}  // namespace kro::services::routebasedconsumption
