#pragma once

#include "core_types/error_code.h"

namespace tarn7::tool {

/// Throws CommandError (kCallFailed) with the code's domain, number and text.
[[noreturn]] void ThrowCallError(const ara::core::ErrorCode& code);

}  // namespace tarn7::tool
