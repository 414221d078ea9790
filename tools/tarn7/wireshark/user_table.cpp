#include "tools/tarn7/wireshark/user_table.h"

#include <array>
#include <charconv>

namespace tarn7::tool {

UserTable::Value UserTable::Hex(std::uint64_t id) {
  std::array<char, 16> digits{};
  return std::string(digits.data(), std::to_chars(digits.begin(), digits.end(), id, 16).ptr);
}

void UserTable::AddRow(std::initializer_list<Value> values) {
  const char* separator = "\"";
  for (const Value& value : values) {
    text_ += separator + value.Text();
    separator = "\",\"";
  }
  text_ += "\"\n";
}

}  // namespace tarn7::tool
