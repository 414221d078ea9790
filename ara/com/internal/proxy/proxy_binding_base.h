#pragma once

namespace ara::com::internal::proxy {

/// The runtime's handle on a proxy binding of any interface. Owned by the application's proxy.
class ProxyBindingBase {
 public:
  virtual ~ProxyBindingBase() = default;

 protected:
  ProxyBindingBase() = default;
  ProxyBindingBase(const ProxyBindingBase&) = delete;
  ProxyBindingBase& operator=(const ProxyBindingBase&) = delete;
};

}  // namespace ara::com::internal::proxy
