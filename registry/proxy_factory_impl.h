#pragma once

#include <memory>

#include "platform/include/transport_identifier.h"
#include "registry/proxy_factory.h"

namespace ara::com::internal::vsomeip::runtime {

/// The factory of one SOME/IP proxy binding class, which is constructed from a 16-bit instance id.
template <typename ProxyBinding>
class ProxyFactoryImpl final : public internal::proxy::ProxyFactory {
 public:
  using ProxyFactory::ProxyFactory;

  std::unique_ptr<internal::proxy::ProxyBindingBase> Create() const override {
    const auto instanceId = common::ToTransportIdentifier(GetInstanceIdentifier());
    if (!instanceId) {
      return nullptr;
    }
    return std::make_unique<ProxyBinding>(*instanceId);
  }
};

}  // namespace ara::com::internal::vsomeip::runtime
