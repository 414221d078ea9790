#pragma once

#include <memory>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// Access to a field of an interface that the library consumes, through a proxy binding of that interface.
std::unique_ptr<FieldClient> ConnectField(const FieldAddress& address,
                                          std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding);

}  // namespace tarn7::tool
