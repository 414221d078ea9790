#pragma once

#include <cstdio>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <utility>

#include "core_types/future.h"

namespace ara::core {

/// The sending end of a call. Destroyed or assigned over without a result, it leaves its Future a broken-promise error,
/// and then runs the continuation.
template <typename T, typename E = ErrorCode>
class Promise {
 public:
  Promise() = default;
  Promise(Promise&& other) noexcept : promise_(std::move(other.promise_)), state_(std::move(other.state_)) {}
  Promise& operator=(Promise&& other) noexcept {
    if (this != &other) {
      const Promise former(std::move(*this));
      promise_ = std::move(other.promise_);
      state_ = std::move(other.state_);
    }
    return *this;
  }
  /// What a continuation throws here has no caller to go to: it is written to the standard error.
  ~Promise() {
    if (state_ == nullptr) {
      return;
    }
    { const auto broken = std::move(promise_); }  // the error first, then the continuation
    try {
      state_->RunContinuation();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "A continuation has thrown when its promise was broken: %s\n", error.what());
    } catch (...) {
      std::fputs("A continuation has thrown when its promise was broken: what it threw is no exception\n", stderr);
    }
  }

  /// The one Future of this promise. Throws std::future_error: `future_already_retrieved` the second time, `no_state`
  /// when moved from.
  Future<T, E> get_future() {
    const internal::HolderGuard guard(mutex_, lock_);
    auto state = state_;
    return {promise_.get_future(), std::move(state)};
  }

  /// Sets the result and then runs the Future's continuation, with this promise's mutex held: the continuation must not
  /// use or destroy this promise. What it throws passes; the result is set all the same. Throws std::future_error:
  /// `promise_already_satisfied` the second time (the first result stays), `no_state` when moved from.
  void SetResult(Result<T, E>&& result) {
    const internal::HolderGuard guard(mutex_, lock_);
    if (state_ == nullptr) {
      throw std::future_error(std::future_errc::no_state);
    }
    promise_.set_value(std::move(result));
    state_->RunContinuation();
  }
  void SetError(E&& error) { SetResult(Result<T, E>(std::move(error))); }

 private:
  // The order of the members is fixed.
  std::mutex mutex_;  // serialises the setters and get_future
  std::unique_lock<std::mutex> lock_{mutex_, std::defer_lock};
  std::promise<Result<T, E>> promise_;
  std::shared_ptr<internal::State> state_ = std::make_shared<internal::State>();
};

}  // namespace ara::core
