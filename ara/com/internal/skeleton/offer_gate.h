#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace ara::com::internal::skeleton {

/// Marks the calling thread, while it lives, as one that runs a get handler: it waits for no other one, because two
/// that end each other's offers would wait for each other.
class GetHandlerScope {
 public:
  GetHandlerScope() noexcept { ++Depth(); }
  ~GetHandlerScope() { --Depth(); }
  GetHandlerScope(const GetHandlerScope&) = delete;
  GetHandlerScope& operator=(const GetHandlerScope&) = delete;

  static bool IsInside() noexcept { return Depth() != 0; }

 private:
  static int& Depth() noexcept {
    thread_local int depth = 0;
    return depth;
  }
};

/// Lets one thread at a time offer or withdraw a skeleton, which takes a step for each instance. Others wait, but for
/// the very thread that is at it: something that it destroys may call back.
class OfferGate {
 public:
  /// Before an offer. False, and nothing has begun, where this thread is at it already.
  bool BeginOffer() {
    std::unique_lock<std::mutex> lock(mutex_);
    return Begin(lock);
  }
  /// Before a withdrawal. False where this thread is at it already: it withdraws then.
  bool BeginWithdrawal() {
    std::unique_lock<std::mutex> lock(mutex_);
    withdraw_ = withdraw_ || thread_ == std::this_thread::get_id();
    return Begin(lock);
  }
  /// False when the offer is to be withdrawn instead, which has then begun.
  bool EndOffer() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (withdraw_) {
      return false;
    }
    Leave();
    return true;
  }
  void EndWithdrawal() {
    const std::lock_guard<std::mutex> lock(mutex_);
    Leave();
  }

 private:
  bool Begin(std::unique_lock<std::mutex>& lock) {
    const auto self = std::this_thread::get_id();
    if (thread_ == self) {
      return false;
    }
    left_.wait(lock, [this] { return thread_ == std::thread::id{}; });
    thread_ = self;
    withdraw_ = false;
    return true;
  }
  void Leave() {
    thread_ = {};
    left_.notify_all();
  }

  std::mutex mutex_;  // guards the members below
  std::condition_variable left_;
  std::thread::id thread_;  // at it now; none when default
  bool withdraw_ = false;   // asked for by the thread that offers
};

}  // namespace ara::com::internal::skeleton
