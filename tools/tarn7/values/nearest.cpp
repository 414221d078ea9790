#include "tools/tarn7/values/nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace tarn7::tool {

namespace {

bool IsSameLetter(char left, char right) {
  return std::tolower(static_cast<unsigned char>(left)) == std::tolower(static_cast<unsigned char>(right));
}

/// How many letters must be put in, taken out or replaced; case does not count.
std::size_t EditDistance(const std::string& left, const std::string& right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t replaced = diagonal + (IsSameLetter(left[i], right[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
    }
  }
  return row.back();
}

}  // namespace

std::string Nearest(const std::string& name, const std::vector<std::string>& names) {
  return *std::min_element(names.begin(), names.end(), [&name](const std::string& left, const std::string& right) {
    return EditDistance(name, left) < EditDistance(name, right);
  });
}

}  // namespace tarn7::tool
