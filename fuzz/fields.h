#pragma once

#include <string>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "interfaces/interface_list.h"

namespace fuzz {

/// Calls `visitor("INTERFACE/FIELD", descriptor)` for each field of each interface, in the library's own order.
template <typename Visitor>
void ForEachField(Visitor visitor) {
  using ara::com::internal::vsomeip::common::ForEachType;
  const auto visit_interface = [&visitor](auto interface) {
    using Interface = decltype(interface);
    ForEachType(typename Interface::Fields{}, [&visitor](auto field) {
      visitor(std::string(Interface::Service::name) + '/' + decltype(field)::name, field);
    });
  };
  ForEachType(kro::services::ConsumedInterfaces{}, visit_interface);
  ForEachType(kro::services::ProvidedInterfaces{}, visit_interface);
}

}  // namespace fuzz
