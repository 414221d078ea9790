#pragma once

#include <chrono>
#include <csignal>
#include <ctime>

namespace example {

/// Waits for Ctrl-C, or SIGTERM, so that a program can end in order. Make it before anything that starts a thread, as
/// proxies and skeletons do: the signals then come to nobody but this.
class CtrlC {
 public:
  CtrlC() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }

  /// Returns once it was pressed.
  void Wait() const {
    int signal = 0;
    sigwait(&signals_, &signal);
  }

  /// Waits that long at most; whether it was pressed.
  bool PressedWithin(std::chrono::milliseconds time) const {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const timespec limit{seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
    return sigtimedwait(&signals_, nullptr, &limit) > 0;
  }

 private:
  sigset_t signals_{};
};

}  // namespace example
