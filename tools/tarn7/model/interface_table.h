#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// The models of the library's interfaces, as the build found them in interfaces/model.
const std::vector<std::string_view>& BuiltInModels();

/// All interfaces that the tool knows. What it returns stays where it is.
class InterfaceTable {
 public:
  /// The library's own: first those that it consumes, each by service id.
  InterfaceTable();
  InterfaceTable(const InterfaceTable&) = delete;
  InterfaceTable& operator=(const InterfaceTable&) = delete;

  /// Adds the interface that a model file describes. Throws CommandError (kUsage), which names file, place and reason,
  /// for what is none, or has the name or the service id of another.
  void AddFile(const std::string& path);

  const std::deque<Interface>& All() const noexcept { return interfaces_; }

  // Each throws CommandError (kUsage) for a wrong name, and names the nearest right one.

  const Interface& FindInterface(const std::string& name) const;
  /// INTERFACE/FIELD.
  FieldAddress FindAddress(const std::string& text) const;
  /// INTERFACE/FIELD, or INTERFACE for all of its fields.
  std::vector<FieldAddress> FindAddresses(const std::string& text) const;

 private:
  std::deque<Interface> interfaces_;
};

/// As those of the table.
const Field& FindField(const Interface& interface, const std::string& name);

}  // namespace tarn7::tool
