#include "tools/tarn7/library/consumed_fields.h"

#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "interfaces/interface_list.h"
#include "tools/tarn7/library/proxy_field_client.h"

namespace tarn7::tool {

namespace {

using Binding = std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase>;
using Connect = std::unique_ptr<FieldClient> (*)(Binding);
using ara::com::internal::vsomeip::common::ForEachType;

template <typename InterfaceDescriptor, typename Descriptor>
std::unique_ptr<FieldClient> ConnectTyped(Binding binding) {
  auto* const base = dynamic_cast<typename InterfaceDescriptor::ProxyBase*>(binding.get());
  if (base == nullptr) {
    throw std::logic_error("the platform made a proxy of another interface");
  }
  auto& field = (base->*Descriptor::accessor)();
  return std::make_unique<ProxyFieldClient<std::remove_reference_t<decltype(field)>>>(std::move(binding), field);
}

const std::map<std::string, Connect>& ConsumedFields() {
  static const std::map<std::string, Connect> fields = [] {
    std::map<std::string, Connect> all;
    ForEachType(kro::services::ConsumedInterfaces{}, [&all](auto interface) {
      using Interface = decltype(interface);
      ForEachType(typename Interface::Fields{}, [&all](auto field) {
        using Field = decltype(field);
        all[std::string(Interface::Service::name) + '/' + Field::name] = &ConnectTyped<Interface, Field>;
      });
    });
    return all;
  }();
  return fields;
}

}  // namespace

std::unique_ptr<FieldClient> ConnectField(const FieldAddress& address, Binding binding) {
  return ConsumedFields().at(address.ToString())(std::move(binding));
}

}  // namespace tarn7::tool
