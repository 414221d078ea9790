#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>
#include <utility>

#include "ara/com/internal/vsomeip/common/logger.h"

namespace ara::com::internal::vsomeip::proxy {

/// A handler of the application, and the calls of it that are due. The calls never overlap, not even with themselves: a
/// thread that finds none at it makes all that are due, in their order; any other leaves its calls to that thread and
/// goes on. So no thread of the stack ever waits for a handler, and a handler may do whatever causes further calls.
///
/// Guarded by a mutex of its owner, which is held in every operation and released while the handler runs. What a
/// handler throws is logged and goes no further.
template <typename... Arguments>
class HandlerCalls {
 public:
  using Handler = std::function<void(Arguments...)>;

  /// Takes the place of the present handler, which is left in the argument: to be destroyed without the mutex, because
  /// it may own anything. The new one gets the calls that are due; null takes the handler back, and them with it. Has
  /// no effect after Stop().
  void Set(std::shared_ptr<const Handler>& handler) noexcept {
    if (stopped_) {
      return;
    }
    handler_.swap(handler);
    if (handler_ == nullptr) {
      due_.clear();
    }
  }

  /// Notes that a call is due; without a handler none is.
  void Add(Arguments... arguments) {
    if (handler_ != nullptr) {
      due_.emplace_back(arguments...);
    }
  }
  std::size_t CountDue() const noexcept { return due_.size(); }

  /// Makes the calls that are due, unless a thread is at it. Each end of such a round is told through `ended`. The
  /// handler may destroy the owner's user, so the caller must keep the owner alive.
  void Make(std::unique_lock<std::mutex>& lock, std::condition_variable& ended) {
    if (due_.empty() || caller_ != std::thread::id{}) {
      return;
    }
    caller_ = std::this_thread::get_id();
    while (!due_.empty()) {  // so there is a handler
      const std::tuple<Arguments...> arguments = due_.front();
      due_.pop_front();
      std::shared_ptr<const Handler> handler = handler_;
      lock.unlock();
      Call(*handler, arguments);
      handler = nullptr;  // may be the last to hold it, and what it owns may call back
      lock.lock();
    }
    caller_ = {};
    ended.notify_all();
  }

  /// Takes the handler back for good, and leaves it in the argument.
  void Stop(std::shared_ptr<const Handler>& handler) noexcept {
    Set(handler);
    stopped_ = true;
  }
  bool RunsOnAnotherThread() const noexcept {
    return caller_ != std::thread::id{} && caller_ != std::this_thread::get_id();
  }

 private:
  static void Call(const Handler& handler, const std::tuple<Arguments...>& arguments) noexcept {
    try {
      std::apply(handler, arguments);
    } catch (const std::exception& error) {
      common::LogWarning("proxy/handler_calls", "Call", __LINE__) << "A handler has thrown: " << error.what();
    } catch (...) {
      common::LogWarning("proxy/handler_calls", "Call", __LINE__) << "A handler has thrown what is no exception";
    }
  }

  std::shared_ptr<const Handler> handler_;  // null: none, and then no call is due
  std::deque<std::tuple<Arguments...>> due_;
  std::thread::id caller_;  // the thread that makes the calls; none: nobody does
  bool stopped_ = false;
};

}  // namespace ara::com::internal::vsomeip::proxy
