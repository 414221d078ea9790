#pragma once

#include <string>

#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// A field's value as JSON text on one line: a record as an object of its present members, bytes as hex digits, any
/// other sequence as an array. Throws PayloadError for bytes that are no value of the type.
std::string PayloadText(const ValueType& type, const Payload& payload);

/// How much a field's value holds: "1 record, member1: 200, 855 elements". Said are the records, the lengths of their
/// own sequences, and the elements of all sequences inside of them, however deep. Throws PayloadError.
std::string Outline(const ValueType& type, const Payload& payload);

}  // namespace tarn7::tool
