#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace ara::core::internal {

/// What a Promise shares with its Future beside the standard library's own state: the callback to run when the result
/// is set. Others have been compiled against these two members: what else a continuation needs is kept with it.
struct State {
  std::function<void()> continuation;
  std::mutex lock;  // guards continuation

  /// Runs the continuation if there is one that has not run. To be called when the result is there, without the lock.
  /// What the continuation throws passes.
  void RunContinuation() {
    std::function<void()> due;
    {
      const std::lock_guard<std::mutex> guard(lock);
      due = continuation;  // which stays, so that the Future's destructor finds it
    }
    if (due) {
      due();
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
