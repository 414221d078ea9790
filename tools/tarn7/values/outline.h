#pragma once

#include <string>

#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// How much a field's value holds: "1 record, member1: 200, 855 elements". Said are the records, the lengths of their
/// own sequences, and the elements of all sequences inside of them, however deep.
std::string Outline(const Json& value);

}  // namespace tarn7::tool
