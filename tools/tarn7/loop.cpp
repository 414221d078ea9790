#include "tools/tarn7/loop.h"

#include <csignal>
#include <utility>

#include <boost/asio/post.hpp>

namespace tarn7::tool {

Loop::Loop() : signals_(context_, SIGINT, SIGTERM) {
  signals_.async_wait([this](const boost::system::error_code& error, int signal) {
    if (!error) {
      signal_ = signal;
    }
  });
}

void Loop::Post(std::function<void()> job) { boost::asio::post(context_, std::move(job)); }

bool Loop::RunUntil(TimePoint deadline, const std::function<bool()>& done) {
  while (!done()) {
    if (signal_ != 0) {
      throw Interrupted{signal_};
    }
    context_.restart();
    if (context_.run_one_until(deadline) == 0 && Clock::now() >= deadline) {
      return false;
    }
  }
  return true;
}

}  // namespace tarn7::tool
