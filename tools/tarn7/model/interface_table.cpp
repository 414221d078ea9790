#include "tools/tarn7/model/interface_table.h"

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "interfaces/interface_list.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/typed_field.h"
#include "tools/tarn7/server/skeleton_service.h"
#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

namespace {

namespace common = ara::com::internal::vsomeip::common;

template <typename Descriptor>
Interface MakeInterface() {
  using Service = typename Descriptor::Service;
  Interface interface {
    Service::name, Service::ara_service_id, Service::service_id, Service::major_version, Service::minor_version, {}, {}
  };
  common::ForEachType(typename Descriptor::Fields{}, [&interface](auto field) {
    interface.fields.push_back(std::make_unique<const TypedField<Descriptor, decltype(field)>>());
  });
  if constexpr (kIsProvided<Descriptor>) {
    interface.make_skeleton = [](std::uint16_t instance) {
      return std::make_unique<SkeletonService<Descriptor>>(instance);
    };
  }
  return interface;
}

std::vector<Interface> MakeInterfaces() {
  std::vector<Interface> interfaces;
  const auto add = [&interfaces](auto descriptor) { interfaces.push_back(MakeInterface<decltype(descriptor)>()); };
  common::ForEachType(kro::services::ConsumedInterfaces{}, add);
  common::ForEachType(kro::services::ProvidedInterfaces{}, add);
  return interfaces;
}

}  // namespace

const std::vector<Interface>& Interfaces() {
  static const std::vector<Interface> interfaces = MakeInterfaces();
  return interfaces;
}

const Interface& FindInterface(const std::string& name) {
  std::vector<std::string> names;
  for (const Interface& interface : Interfaces()) {
    if (interface.name == name) {
      return interface;
    }
    names.push_back(interface.name);
  }
  throw CommandError(Status::kUsage, "no interface '" + name + "'; did you mean '" + Nearest(name, names) + "'?");
}

const Field& FindField(const Interface& interface, const std::string& name) {
  std::vector<std::string> names;
  for (const auto& field : interface.fields) {
    if (field->Name() == name) {
      return *field;
    }
    names.push_back(field->Name());
  }
  throw CommandError(Status::kUsage, "no field '" + name + "' in " + interface.name + "; did you mean '" +
                                         interface.name + '/' + Nearest(name, names) + "'?");
}

FieldAddress FindAddress(const std::string& text) {
  const std::size_t slash = text.find('/');
  const Interface& interface = FindInterface(text.substr(0, slash));
  if (slash == std::string::npos) {
    throw CommandError(Status::kUsage, "'" + text + "' names no field: write INTERFACE/FIELD, such as " +
                                           FieldAddress{&interface, interface.fields.front().get()}.ToString());
  }
  return {&interface, &FindField(interface, text.substr(slash + 1))};
}

std::vector<FieldAddress> FindAddresses(const std::string& text) {
  if (text.find('/') != std::string::npos) {
    return {FindAddress(text)};
  }
  const Interface& interface = FindInterface(text);
  std::vector<FieldAddress> addresses;
  for (const auto& field : interface.fields) {
    addresses.push_back({&interface, field.get()});
  }
  return addresses;
}

}  // namespace tarn7::tool
