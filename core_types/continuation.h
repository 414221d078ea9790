#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace ara::core::internal {

/// A continuation of a Future, as it lies in the slot that the Promise shares: it runs once at most, and can be taken
/// back. It stays in the slot while it runs, so that who destroys the Future finds it.
class Continuation {
 public:
  using Shared = std::shared_ptr<Continuation>;

  /// What goes into the slot; empty when `function` is.
  static std::function<void()> Store(std::function<void()> function) {
    if (!function) {
      return nullptr;
    }
    return InSlot{std::make_shared<Continuation>(std::move(function))};
  }
  /// The continuation that a slot holds, or null.
  static Shared In(const std::function<void()>& slot) noexcept {
    const auto* stored = slot.target<InSlot>();
    return stored != nullptr ? stored->continuation : nullptr;
  }

  explicit Continuation(std::function<void()> function) noexcept : function_(std::move(function)) {}
  Continuation(const Continuation&) = delete;
  Continuation& operator=(const Continuation&) = delete;

  /// Afterwards it does not run, and what it owned is gone: one that runs on another thread is waited for. Not by a
  /// thread that is in a continuation itself: two that destroy each other's futures would wait for each other.
  void TakeBack() {
    TakeBackUnlessBegun();
    std::unique_lock<std::mutex> lock(mutex_);
    if (Depth() == 0 && runner_ != std::this_thread::get_id()) {
      ended_.wait(lock, [this] { return runner_ == std::thread::id{}; });
    }
  }
  /// As TakeBack, but lets one that has begun run on.
  void TakeBackUnlessBegun() {
    std::function<void()> dropped;  // destroyed after the lock is released: it may own the future
    const std::lock_guard<std::mutex> lock(mutex_);
    dropped.swap(function_);
  }

 private:
  struct InSlot {
    Shared continuation;
    void operator()() const { continuation->Run(); }
  };

  void Run() {
    std::function<void()> function;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!function_) {
        return;  // has run, or was taken back
      }
      function.swap(function_);
      runner_ = std::this_thread::get_id();
    }
    const Running running(*this, function);
    function();
  }

  /// The end of a run, however it comes.
  class Running {
   public:
    Running(Continuation& owner, std::function<void()>& function) : owner_(owner), function_(function) { ++Depth(); }
    ~Running() {
      function_ = nullptr;  // what it owns goes before anybody is told
      --Depth();
      const std::lock_guard<std::mutex> lock(owner_.mutex_);
      owner_.runner_ = {};
      owner_.ended_.notify_all();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

   private:
    Continuation& owner_;
    std::function<void()>& function_;
  };

  /// How many continuations the calling thread is in, as far as this library has made them.
  static int& Depth() noexcept {
    thread_local int depth = 0;
    return depth;
  }

  std::mutex mutex_;  // guards the members below
  std::condition_variable ended_;
  std::function<void()> function_;  // empty once it has begun, or was taken back
  std::thread::id runner_;          // the thread that it runs on; none when default
};

}  // namespace ara::core::internal
