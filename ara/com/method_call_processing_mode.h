#pragma once

#include <cstdint>

namespace ara::com {

/// How a skeleton's method calls are run: kept until the application asks for them, or as they arrive. Getters of
/// fields are answered at once in every mode.
enum class MethodCallProcessingMode : std::uint32_t { kPoll = 0, kEvent = 1, kEventSingleThread = 2 };

}  // namespace ara::com
