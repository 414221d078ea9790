#pragma once

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <ctime>
#include <new>
#include <semaphore.h>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace benchmarks {

/// Counts what arrives in other processes, in memory that they share: only the last of those that are expected wakes
/// the process that waits.
class SharedArrivals {
 public:
  /// For the process that waits. Processes that it starts inherit Descriptor().
  SharedArrivals() : SharedArrivals(Create()) {
    new (counters_) Counters;
    if (sem_init(&counters_->all, 1, 0) != 0) {
      throw std::runtime_error("no semaphore can be shared");
    }
  }
  /// For a process that was started by that one.
  explicit SharedArrivals(int descriptor)
      : descriptor_(descriptor),
        counters_(static_cast<Counters*>(
            mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0))) {
    if (counters_ == MAP_FAILED) {
      throw std::runtime_error("no memory can be shared");
    }
  }
  ~SharedArrivals() {
    munmap(counters_, sizeof(Counters));
    close(descriptor_);
  }
  SharedArrivals(const SharedArrivals&) = delete;
  SharedArrivals& operator=(const SharedArrivals&) = delete;

  int Descriptor() const { return descriptor_; }

  void Expect(std::size_t count) { counters_->left = static_cast<long>(count); }
  /// What nobody expects counts for nothing.
  void Add() {
    if (--counters_->left == 0) {
      sem_post(&counters_->all);
    }
  }
  /// Throws std::runtime_error when that takes too long.
  void Await() {
    timespec limit{};
    clock_gettime(CLOCK_REALTIME, &limit);
    limit.tv_sec += 10;
    while (sem_timedwait(&counters_->all, &limit) != 0) {
      if (errno != EINTR) {
        throw std::runtime_error("samples that did not arrive: " + std::to_string(counters_->left));
      }
    }
  }

 private:
  struct Counters {
    std::atomic<long> left{0};
    sem_t all{};
  };

  static int Create() {
    const int descriptor = memfd_create("tarn7_benchmark_arrivals", 0);
    if (descriptor < 0 || ftruncate(descriptor, sizeof(Counters)) != 0) {
      throw std::runtime_error("no memory can be shared");
    }
    return descriptor;
  }

  const int descriptor_;
  Counters* const counters_;
};

}  // namespace benchmarks
