// In a source of its own, so that no caller has one half of a pair of new and delete inlined and not the other.
#include "benchmarks/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocations{0};
}  // namespace

std::size_t benchmarks::AllocationCount() { return allocations; }

void* operator new(std::size_t size) {
  allocations.store(allocations.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
