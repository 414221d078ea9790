#pragma once

#include <string>
#include <vector>

namespace tarn7::tool {

/// The one of `names` (at least one) that takes the fewest changes of a letter to get to from `name`. The first of
/// several.
std::string Nearest(const std::string& name, const std::vector<std::string>& names);

}  // namespace tarn7::tool
