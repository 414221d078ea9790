#pragma once

#include <cctype>
#include <string>
#include <vector>

namespace support {

/// "00 0a ff" and "000aff" alike. Anything that is no hexadecimal digit separates.
inline std::vector<unsigned char> Bytes(const std::string& hex) {
  std::string digits;
  for (const char c : hex) {
    if (std::isxdigit(static_cast<unsigned char>(c)) != 0) {
      digits += c;
    }
  }
  std::vector<unsigned char> bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

}  // namespace support
