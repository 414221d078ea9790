#pragma once

#include <cstddef>

namespace benchmarks {

/// How often this program has called operator new. Exact while only one thread allocates.
std::size_t AllocationCount();

}  // namespace benchmarks
