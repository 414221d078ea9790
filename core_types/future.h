#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <utility>

#include "core_types/continuation.h"
#include "core_types/future_error_domain.h"
#include "core_types/future_state.h"
#include "core_types/result.h"

namespace ara::core {

enum class future_status { ready, timeout };

template <typename T, typename E>
class Promise;

/// The receiving end of a call: holds the result once the other side has set it. Movable; one owner at a time.
template <typename T, typename E = ErrorCode>
class Future {
 public:
  Future() noexcept = default;
  Future(Future&& other) noexcept : future_(std::move(other.future_)), state_(std::move(other.state_)) {}
  Future& operator=(Future&& other) noexcept {
    if (this != &other) {
      DropContinuation();
      future_ = std::move(other.future_);
      state_ = std::move(other.state_);
    }
    return *this;
  }
  /// Takes the continuation back: it never runs after its Future is gone. One that is running on another thread is
  /// waited for, unless this thread is in a continuation itself.
  ~Future() { DropContinuation(); }

  /// Waits for the result and takes it. Afterwards the Future is no longer valid(). What the standard library reports
  /// as std::future_error comes back as an error of the future domain: `broken_promise` where the other side was
  /// destroyed without an answer, `no_state` where there is nothing to wait for.
  Result<T, E> GetResult() {
    try {
      if (!future_.valid()) {
        return MakeErrorCode(future_errc::no_state);
      }
      return future_.get();
    } catch (const std::future_error& error) {
      return MakeErrorCode(ToDomain(error.code()));
    }
  }

  /// Waits for the value and takes it. An error is thrown as its domain's exception.
  T get() { return GetResult().ValueOrThrow(); }

  /// Whether there is a result to wait for: false when default-constructed, moved from, or after its result was taken.
  bool valid() const noexcept { return future_.valid(); }

  /// The three waits need a valid() Future: otherwise they throw FutureException with `no_state`.
  void wait() const {
    RequireState();
    future_.wait();
  }
  template <typename Rep, typename Period>
  future_status wait_for(const std::chrono::duration<Rep, Period>& duration) const {
    RequireState();
    return ToStatus(future_.wait_for(duration));
  }
  template <typename Clock, typename Duration>
  future_status wait_until(const std::chrono::time_point<Clock, Duration>& deadline) const {
    RequireState();
    return ToStatus(future_.wait_until(deadline));
  }

  /// Whether GetResult() would return at once.
  bool is_ready() const { return valid() && wait_for(std::chrono::seconds(0)) == future_status::ready; }

  /// Runs `continuation` once, as soon as the result is there, a broken promise included: inside this call if it
  /// already is, else on the thread that sets it (for a proxy's calls a thread of the SOME/IP stack). There it must not
  /// wait for another call of the same method, which cannot be completed meanwhile. What it throws passes to who set
  /// the result, which for a proxy's calls is the library, which logs it.
  ///
  /// A second continuation replaces one that has not begun; an empty one takes it back. So does destroying the Future,
  /// also just after its result came: who waits for the result and for the continuation keeps the Future for both.
  /// Throws FutureException with `no_state` when not valid().
  void then(std::function<void()> continuation) {
    RequireState();
    // Holds the former one afterwards, which is destroyed without the lock: it may own this future.
    std::function<void()> stored = internal::Continuation::Store(std::move(continuation));
    internal::Continuation::Shared former;
    {
      const std::lock_guard<std::mutex> lock(state_->lock);
      if (!is_ready()) {
        state_->continuation.swap(stored);
        return;
      }
      former = internal::Continuation::In(state_->continuation);
    }
    if (former != nullptr) {
      former->TakeBackUnlessBegun();
    }
    if (stored) {
      stored();
    }
  }

 private:
  friend class Promise<T, E>;

  Future(std::future<Result<T, E>> future, std::shared_ptr<internal::State> state) noexcept
      : future_(std::move(future)), state_(std::move(state)) {}

  static future_errc ToDomain(const std::error_code& code) noexcept {
    switch (static_cast<std::future_errc>(code.value())) {
      case std::future_errc::broken_promise:
        return future_errc::broken_promise;
      case std::future_errc::future_already_retrieved:
        return future_errc::future_already_retrieved;
      case std::future_errc::promise_already_satisfied:
        return future_errc::promise_already_satisfied;
      case std::future_errc::no_state:
        break;
    }
    return future_errc::no_state;
  }
  static future_status ToStatus(std::future_status status) noexcept {
    return status == std::future_status::ready ? future_status::ready : future_status::timeout;
  }

  void RequireState() const {
    if (!valid()) {
      MakeErrorCode(future_errc::no_state).ThrowAsException();
    }
  }

  void DropContinuation() noexcept {
    if (state_ == nullptr) {
      return;
    }
    std::function<void()> dropped;  // destroyed after the locks are released: it may own what it captured
    {
      const internal::HolderGuard own(mutex_, lock_);
      const std::lock_guard<std::mutex> lock(state_->lock);
      dropped.swap(state_->continuation);
    }
    if (const auto continuation = internal::Continuation::In(dropped)) {
      continuation->TakeBack();
    }
  }

  // The order of the members is fixed. The mutex is taken before the state's own lock.
  std::mutex mutex_;
  std::unique_lock<std::mutex> lock_{mutex_, std::defer_lock};
  std::future<Result<T, E>> future_;
  std::shared_ptr<internal::State> state_;
};

}  // namespace ara::core
