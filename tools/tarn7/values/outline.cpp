#include "tools/tarn7/values/outline.h"

#include <cstddef>

namespace tarn7::tool {

namespace {

std::size_t CountElements(const Json& value) {
  std::size_t count = value.is_array() ? value.size() : 0;
  for (const Json& inner : value) {  // of what is neither array nor object, the value itself
    count += inner.is_structured() ? CountElements(inner) : 0;
  }
  return count;
}

}  // namespace

std::string Outline(const Json& value) {
  std::string text = std::to_string(value.size()) + (value.size() == 1 ? " record" : " records");
  Json sequences = Json::object();  // their elements by member, in the order of the record
  for (const Json& record : value) {
    for (const auto& [name, member] : record.items()) {
      if (member.is_array()) {
        sequences[name] = sequences.value(name, std::size_t{0}) + member.size();
      }
    }
  }
  for (const auto& [name, count] : sequences.items()) {
    text += ", " + name + ": " + count.dump();
  }
  const std::size_t elements = CountElements(value) - value.size();
  return elements == 0 ? text : text + ", " + std::to_string(elements) + (elements == 1 ? " element" : " elements");
}

}  // namespace tarn7::tool
