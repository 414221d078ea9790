#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <utility>

#include "core_types/running_calls.h"

namespace ara::core::internal {

/// What a Promise shares with its Future beside the standard library's own state: the callback to run when the result
/// is set.
struct State {
  std::function<void()> continuation;
  std::mutex lock;  // guards continuation
  RunningCalls running;

  /// Stores the result through `store` and runs the continuation, at most once, with no lock of this object held. One
  /// that is there when this begins runs whatever happens meanwhile: its Future's destructor waits. One that comes
  /// later finds either the result or, here, the second look. Where there is none, nobody waits for this to return.
  template <typename Store>
  void Complete(Store store) {
    {
      Taken early(*this);
      store();
      early.Run();
    }
    Taken(*this).Run();
  }

 private:
  /// The continuation, taken out of the slot, which counts as running from that moment on.
  class Taken {
   public:
    explicit Taken(State& state) {
      const std::lock_guard<std::mutex> guard(state.lock);
      if (state.continuation) {
        scope_.emplace(state.running);
        continuation_.swap(state.continuation);
      }
    }
    void Run() const {
      if (continuation_) {
        continuation_();
      }
    }

   private:
    std::optional<RunningCalls::Scope> scope_;  // ends after the continuation is destroyed
    std::function<void()> continuation_;
  };
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
