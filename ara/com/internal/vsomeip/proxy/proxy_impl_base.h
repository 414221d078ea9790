#pragma once

#include <cstdint>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "platform/include/connection.h"
#include "platform/include/service_instance.h"

namespace ara::com::internal::vsomeip::proxy {

/// The base of every SOME/IP proxy binding, and of each of its events. A binding holds the request for its service
/// instance here: as a base class it is made before the first field and given back after the last, also when a field's
/// construction fails. An event lives within its binding's request and holds none.
class ProxyImplBase {
 public:
  ProxyImplBase(const ProxyImplBase&) = delete;
  ProxyImplBase& operator=(const ProxyImplBase&) = delete;

  /// Takes the application's handlers back, for good, and waits until none runs on another thread.
  virtual void StopHandlers() {}

 protected:
  ProxyImplBase() = default;
  explicit ProxyImplBase(const common::ServiceInstance& service) : requested_(service) {}
  virtual ~ProxyImplBase() { requested_.DropServiceInstance(); }

  std::uint16_t InstanceId() const noexcept { return requested_.instance; }

 private:
  runtime::VSomeIPConnection::RequestedServiceInstance requested_;
};

/// To be called first in a binding's destructor: stops the handlers of all its fields while every field is still whole.
/// A handler may use any field of its proxy, not only the one that calls it.
template <typename Interface, typename Binding>
void StopHandlers(Binding& binding) {
  static_assert(common::HasDistinctIds(typename Interface::Fields{}), "two of the interface's fields share an id");
  common::ForEachType(typename Interface::Fields{}, [&](auto field) {
    dynamic_cast<ProxyImplBase&>((binding.*decltype(field)::accessor)()).StopHandlers();
  });
}

}  // namespace ara::com::internal::vsomeip::proxy
