#pragma once

#include <chrono>
#include <stdexcept>

#include "core_types/future.h"

namespace benchmarks {

/// The result of a call. Throws std::runtime_error when it takes too long.
template <typename T>
T Await(ara::core::Future<T> future) {
  if (future.wait_for(std::chrono::seconds(10)) != ara::core::future_status::ready) {
    throw std::runtime_error("no answer");
  }
  return future.get();
}

}  // namespace benchmarks
