#pragma once

#include <sched.h>
#include <stdexcept>

namespace benchmarks {

/// Where the two sides of every round trip run. Left to the scheduler, one of two processes that are compared may find
/// itself on one processor with its peer and the other one not, which says more than all code.
inline constexpr int kClientProcessor = 0;
inline constexpr int kServerProcessor = 1;

/// Binds this process, and all threads and processes that it starts from now on, to one of the processors that it may
/// use, counted round where there are fewer.
inline void BindToProcessor(int number) {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) {
    throw std::runtime_error("the processors of this process cannot be read");
  }
  int skip = number % CPU_COUNT(&allowed);
  for (std::size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
    if (CPU_ISSET(processor, &allowed) && skip-- == 0) {
      cpu_set_t one;
      CPU_ZERO(&one);
      CPU_SET(processor, &one);
      if (sched_setaffinity(0, sizeof(one), &one) != 0) {
        throw std::runtime_error("this process cannot be bound to a processor");
      }
      return;
    }
  }
}

}  // namespace benchmarks
