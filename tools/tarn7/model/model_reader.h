#pragma once

#include <string_view>

#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// Reads the model of an interface: JSON, as interfaces/model/interface.schema.json describes it. Throws ValueError,
/// which names the place, for what is none. Which getter ids an interface has is its own affair here, as long as no two
/// of its methods share one.
Interface ReadModel(std::string_view text);

}  // namespace tarn7::tool
