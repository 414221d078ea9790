#include "tools/tarn7/model/interface_table.h"

#include "tools/tarn7/error.h"
#include "tools/tarn7/model/make_interface.h"
#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

const std::vector<Interface>& Interfaces() {
  static const std::vector<Interface> interfaces = [] {
    std::vector<Interface> all;
    AddConsumedInterfaces(all);
    AddProvidedInterfaces(all);
    return all;
  }();
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
