#pragma once

#include <string>
#include <vector>

#include "tools/tarn7/model/field.h"

namespace tarn7::tool {

/// A field together with its interface. Both live until the process ends.
struct FieldAddress {
  const Interface* interface;
  const Field* field;

  std::string ToString() const { return interface->name + '/' + field->Name(); }
};

/// All interfaces of the library, in its own order.
const std::vector<Interface>& Interfaces();

// Each throws CommandError (kUsage) for a wrong name, and names the nearest right one.

const Interface& FindInterface(const std::string& name);
const Field& FindField(const Interface& interface, const std::string& name);
/// INTERFACE/FIELD.
FieldAddress FindAddress(const std::string& text);
/// INTERFACE/FIELD, or INTERFACE for all of its fields.
std::vector<FieldAddress> FindAddresses(const std::string& text);

}  // namespace tarn7::tool
