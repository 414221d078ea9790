#pragma once

#include <cstdint>
#include <string>

namespace tarn7::tool {

/// "1 field", "2 fields": for nouns whose plural ends in s.
inline std::string Counted(std::uint64_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

}  // namespace tarn7::tool
