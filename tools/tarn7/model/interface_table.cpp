#include "tools/tarn7/model/interface_table.h"

#include <algorithm>
#include <utility>

#include "tools/tarn7/error.h"
#include "tools/tarn7/model/model_reader.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

InterfaceTable::InterfaceTable() {
  for (const std::string_view model : BuiltInModels()) {
    interfaces_.push_back(ReadModel(model));
  }
  std::sort(interfaces_.begin(), interfaces_.end(), [](const Interface& left, const Interface& right) {
    return std::pair(left.role, left.service_id) < std::pair(right.role, right.service_id);
  });
}

void InterfaceTable::AddFile(const std::string& path) {
  constexpr std::size_t kLargest = 16U << 20U;
  std::string text;
  try {
    text = ReadFile(path, kLargest);
  } catch (const ValueError& error) {
    throw CommandError(Status::kUsage, error.what());
  }
  try {
    Interface interface = ReadModel(text);
    interface.file = path;
    for (const Interface& other : interfaces_) {
      const std::string origin = other.IsOfLibrary() ? ", which the library has" : ", which is from " + other.file;
      if (other.name == interface.name) {
        throw ValueError("name: there is an interface " + other.name + origin);
      }
      if (other.service_id == interface.service_id) {
        throw ValueError("serviceId: it is that of " + other.name + origin);
      }
    }
    interfaces_.push_back(std::move(interface));
  } catch (const ValueError& error) {
    throw CommandError(Status::kUsage, path + ": " + error.what());
  }
}

const Interface& InterfaceTable::FindInterface(const std::string& name) const {
  std::vector<std::string> names;
  for (const Interface& interface : interfaces_) {
    if (interface.name == name) {
      return interface;
    }
    names.push_back(interface.name);
  }
  throw CommandError(Status::kUsage, "no interface '" + name + "'; did you mean '" + Nearest(name, names) + "'?");
}

const Field& FindField(const Interface& interface, const std::string& name) {
  std::vector<std::string> names;
  for (const Field& field : interface.fields) {
    if (field.name == name) {
      return field;
    }
    names.push_back(field.name);
  }
  throw CommandError(Status::kUsage, "no field '" + name + "' in " + interface.name + "; did you mean '" +
                                         interface.name + '/' + Nearest(name, names) + "'?");
}

FieldAddress InterfaceTable::FindAddress(const std::string& text) const {
  const std::size_t slash = text.find('/');
  const Interface& interface = FindInterface(text.substr(0, slash));
  if (slash == std::string::npos) {
    throw CommandError(Status::kUsage, "'" + text + "' names no field: write INTERFACE/FIELD, such as " +
                                           FieldAddress{&interface, &interface.fields.front()}.ToString());
  }
  return {&interface, &FindField(interface, text.substr(slash + 1))};
}

std::vector<FieldAddress> InterfaceTable::FindAddresses(const std::string& text) const {
  if (text.find('/') != std::string::npos) {
    return {FindAddress(text)};
  }
  const Interface& interface = FindInterface(text);
  std::vector<FieldAddress> addresses;
  for (const Field& field : interface.fields) {
    addresses.push_back({&interface, &field});
  }
  return addresses;
}

}  // namespace tarn7::tool
