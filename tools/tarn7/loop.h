#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace tarn7::tool {

/// Thrown out of the loop when the user (SIGINT) or the system (SIGTERM) asks the program to end.
struct Interrupted {
  int signal;
};

/// What the main thread does while it waits: it runs the jobs that other threads post, until a condition holds, time is
/// up, or a signal asks the program to end. Only jobs touch the command's state, so that needs no lock.
class Loop {
 public:
  using Clock = std::chrono::steady_clock;
  using TimePoint = Clock::time_point;

  static constexpr TimePoint kForever = TimePoint::max();

  /// From here on SIGINT and SIGTERM no longer end the process.
  Loop();
  ~Loop();
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  /// From any thread. The job runs on the thread that runs the loop, never after that left it for good.
  void Post(std::function<void()> job);
  /// The same, when the time is over.
  void PostAfter(Clock::duration time, std::function<void()> job);

  /// Runs jobs until `done`, which is asked before each. False when the deadline passed first, at
  /// which one more job is run: a caller that is always late gets on, too. Throws Interrupted.
  bool RunUntil(TimePoint deadline, const std::function<bool()>& done);

 private:
  struct State;  // keeps Boost.Asio, which takes long to compile, out of whoever waits

  std::unique_ptr<State> state_;
};

}  // namespace tarn7::tool
