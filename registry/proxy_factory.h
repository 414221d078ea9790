#pragma once

#include <memory>
#include <utility>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "platform/include/instance_identifier.h"

namespace ara::com::internal::proxy {

/// Creates proxy bindings of one interface for one instance, any number of times. Immutable and usable from any thread,
/// but for SetInstanceIdentifier, which must not run while another thread uses the factory.
class ProxyFactory {
 public:
  explicit ProxyFactory(InstanceIdentifier instance) noexcept : instance_(std::move(instance)) {}
  virtual ~ProxyFactory() = default;

  /// A new binding, or null when the identifier is no instance of the transport. What the binding's constructor throws
  /// passes.
  virtual std::unique_ptr<ProxyBindingBase> Create() const = 0;
  virtual const InstanceIdentifier& GetInstanceIdentifier() const { return instance_; }
  virtual void SetInstanceIdentifier(const InstanceIdentifier& instance) { instance_ = instance; }

 private:
  InstanceIdentifier instance_;
};

}  // namespace ara::com::internal::proxy
