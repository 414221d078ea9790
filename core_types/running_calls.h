#pragma once

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace ara::core::internal {

/// Counts the calls into an application that are under way, so that the object that makes them can be destroyed in
/// peace: its destructor first takes its handlers back and then waits here until none runs any more.
class RunningCalls {
 public:
  /// Marks one call while it lives.
  class Scope {
   public:
    explicit Scope(RunningCalls& calls) : calls_(calls) {
      const std::lock_guard<std::mutex> lock(calls_.mutex_);
      calls_.callers_.push_back(std::this_thread::get_id());
    }
    ~Scope() {
      const std::lock_guard<std::mutex> lock(calls_.mutex_);
      auto& callers = calls_.callers_;
      callers.erase(std::find(callers.begin(), callers.end(), std::this_thread::get_id()));
      calls_.finished_.notify_all();
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    RunningCalls& calls_;
  };

  /// Returns when no other thread is inside a call. A call on this very thread is not waited for, so that a handler may
  /// destroy the object that called it.
  void WaitForOtherThreads() {
    const auto self = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(mutex_);
    finished_.wait(lock, [&] {
      return std::all_of(callers_.begin(), callers_.end(), [self](std::thread::id caller) { return caller == self; });
    });
  }

 private:
  std::mutex mutex_;  // guards the members below
  std::condition_variable finished_;
  std::vector<std::thread::id> callers_;  // one entry per call under way; a thread inside two calls has two
};

}  // namespace ara::core::internal
