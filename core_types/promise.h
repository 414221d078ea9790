#pragma once

#include <future>
#include <memory>
#include <mutex>
#include <utility>

#include "core_types/future.h"

namespace ara::core {

/// The sending end of a call. Destroyed without a result, it leaves the waiting Future a broken-promise error.
template <typename T, typename E = ErrorCode>
class Promise {
 public:
  Promise() = default;
  Promise(Promise&& other) noexcept : promise_(std::move(other.promise_)), state_(std::move(other.state_)) {}
  Promise& operator=(Promise&& other) noexcept {
    promise_ = std::move(other.promise_);
    state_ = std::move(other.state_);
    return *this;
  }
  ~Promise() = default;

  /// The one Future of this promise. Throws std::future_error: `future_already_retrieved` the second time, `no_state`
  /// when moved from.
  Future<T, E> get_future() {
    const internal::HolderGuard guard(mutex_, lock_);
    auto state = state_;
    return {promise_.get_future(), std::move(state)};
  }

  /// Sets the result and runs the Future's continuation, with this promise's mutex held. Throws std::future_error:
  /// `promise_already_satisfied` the second time (the first result stays), `no_state` when moved from.
  void SetResult(Result<T, E>&& result) {
    const internal::HolderGuard guard(mutex_, lock_);
    if (state_ == nullptr) {
      throw std::future_error(std::future_errc::no_state);
    }
    state_->Complete([&] { promise_.set_value(std::move(result)); });
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
