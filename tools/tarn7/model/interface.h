#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/tarn7/values/value_type.h"

namespace tarn7::tool {

/// One field of an interface. Its value is a sequence of records.
struct Field {
  bool HasSetter() const noexcept { return setter != 0; }

  std::string name;
  std::uint16_t getter;
  std::uint16_t setter;  ///< 0 where the field has none
  std::uint16_t event;
  std::uint16_t eventgroup;
  const ValueType* type;
};

/// One interface, as its model describes it.
struct Interface {
  enum class Role : std::uint8_t { kConsumed, kProvided };

  bool IsProvided() const noexcept { return role == Role::kProvided; }
  const char* RoleName() const noexcept { return IsProvided() ? "provided" : "consumed"; }
  /// Whether the library has a proxy or a skeleton of it; of what a file of the user adds, only the tool knows.
  bool IsOfLibrary() const noexcept { return file.empty(); }

  std::string name;
  Role role;  ///< whether applications are its clients (consumed) or its server (provided)
  std::uint16_t ara_service_id;
  std::uint16_t service_id;
  std::uint8_t major_version;
  std::uint32_t minor_version;
  std::string choice;  ///< what holds throughout, and is this library's choice
  std::vector<Field> fields;
  std::shared_ptr<const TypeStore> types;  ///< what the fields refer to
  std::string file;
};

/// A field together with its interface. Both belong to the table that they are from.
struct FieldAddress {
  const Interface* interface;
  const Field* field;

  std::string ToString() const { return interface->name + '/' + field->name; }
};

}  // namespace tarn7::tool
