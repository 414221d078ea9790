#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// Bytes that are no value of their field. The text is the library's own, behind the place in the value and in the
/// payload: "[0].member3 at byte 17: ...".
class PayloadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a payload holds that the library accepts and passes over: one line each.
using PayloadNotes = std::vector<std::string>;

/// Checks a payload as a field's value of the type, which is a sequence, and accepts what the library's decoder
/// accepts. Throws PayloadError; also for short scalars, where that decoder may end the process.
PayloadNotes CheckPayload(const ValueType& type, const Payload& payload);

}  // namespace tarn7::tool
