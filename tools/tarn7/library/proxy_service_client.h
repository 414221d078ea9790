#pragma once

#include <cstdint>
#include <memory>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "platform/include/find_service.h"
#include "tools/tarn7/client/service_client.h"

namespace tarn7::tool {

/// Access through the library's own proxy, to an interface that the library consumes.
class ProxyServiceClient final : public ServiceClient {
 public:
  ProxyServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed);
  ~ProxyServiceClient() override;

  std::unique_ptr<FieldClient> Connect(const Field& field) override;

 private:
  const Interface& interface_;
  std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding_;
  ara::com::FindServiceHandle search_;
};

}  // namespace tarn7::tool
