#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "tools/tarn7/model/field.h"
#include "tools/tarn7/model/typed_field.h"
#include "tools/tarn7/server/skeleton_service.h"

namespace tarn7::tool {

// Appends the interfaces of one of the library's lists. A source file each: they take long to compile.
void AddConsumedInterfaces(std::vector<Interface>& interfaces);
void AddProvidedInterfaces(std::vector<Interface>& interfaces);

/// The interface that a descriptor of the library describes, with its fields.
template <typename Descriptor>
Interface MakeInterface() {
  using Service = typename Descriptor::Service;
  Interface interface {
    Service::name, Service::ara_service_id, Service::service_id, Service::major_version, Service::minor_version, {}, {}
  };
  ara::com::internal::vsomeip::common::ForEachType(typename Descriptor::Fields{}, [&interface](auto field) {
    interface.fields.push_back(std::make_unique<const TypedField<Descriptor, decltype(field)>>());
  });
  if constexpr (kIsProvided<Descriptor>) {
    interface.make_skeleton = [](std::uint16_t instance) {
      return std::make_unique<SkeletonService<Descriptor>>(instance);
    };
  }
  return interface;
}

template <typename... Descriptors>
void AddInterfaces(ara::com::internal::vsomeip::common::TypeList<Descriptors...>, std::vector<Interface>& interfaces) {
  (interfaces.push_back(MakeInterface<Descriptors>()), ...);
}

}  // namespace tarn7::tool
