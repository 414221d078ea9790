#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/tarn7/model/interface.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// Values by field. Each is a value of its field.
using FieldValues = std::map<const Field*, Payload>;

/// Reads JSON text, {"FIELD": value, ...}; where `fields` are of several interfaces, "INTERFACE/FIELD" may be needed.
/// Throws ValueError, which begins with `source`, for other text, a field that is not among `fields` and for what is no
/// value of its field.
FieldValues ReadFieldValues(std::string_view text, const std::string& source, const std::vector<FieldAddress>& fields);

/// The same from a file, or from standard input where `path` is "-".
FieldValues ReadFieldValuesFile(const std::string& path, const std::vector<FieldAddress>& fields);

}  // namespace tarn7::tool
