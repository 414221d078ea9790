#pragma once

#include <string>

#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// The payload that carries the value which PayloadText writes like that. Throws ValueError, which names the place, for
/// a wrong type, an unknown member, or a number that does not fit.
Payload Encode(const ValueType& type, const Json& value);
/// The same for JSON text as it stands on a command line; "-" stands for standard input.
Payload EncodeArgument(const ValueType& type, const std::string& argument);

}  // namespace tarn7::tool
