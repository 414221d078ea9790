#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "core_types/running_calls.h"

namespace ara::core::internal {

/// What a Promise shares with its Future beside the standard library's own state: the callback to run when the result
/// is set.
struct State {
  std::function<void()> continuation;
  std::mutex lock;  // guards continuation
  RunningCalls running;

  /// Runs the continuation, if there is one, at most once. It is called with no lock of this object held.
  void RunContinuation() {
    const RunningCalls::Scope scope(running);
    std::function<void()> taken;
    {
      const std::lock_guard<std::mutex> guard(lock);
      taken.swap(continuation);
    }
    if (taken) {
      taken();
    }
  }
};

/// Holds a mutex through a unique lock that is a member of the same object, for as long as this guard lives. The member
/// is only touched while the mutex is held, so that several threads may use it.
class HolderGuard {
 public:
  HolderGuard(std::mutex& mutex, std::unique_lock<std::mutex>& holder) : holder_(holder) {
    std::unique_lock<std::mutex> lock(mutex);
    holder_ = std::move(lock);
  }
  ~HolderGuard() { const std::unique_lock<std::mutex> lock = std::move(holder_); }
  HolderGuard(const HolderGuard&) = delete;
  HolderGuard& operator=(const HolderGuard&) = delete;

 private:
  std::unique_lock<std::mutex>& holder_;
};

}  // namespace ara::core::internal
