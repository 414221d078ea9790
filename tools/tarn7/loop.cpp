#include "tools/tarn7/loop.h"

#include <csignal>
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

namespace tarn7::tool {

struct Loop::State {
  boost::asio::io_context context;
  boost::asio::signal_set signals{context, SIGINT, SIGTERM};
  int signal = 0;  // the one that arrived
};

Loop::Loop() : state_(std::make_unique<State>()) {
  state_->signals.async_wait([state = state_.get()](const boost::system::error_code& error, int signal) {
    if (!error) {
      state->signal = signal;
    }
  });
}

Loop::~Loop() = default;

void Loop::Post(std::function<void()> job) { boost::asio::post(state_->context, std::move(job)); }

void Loop::PostAfter(Clock::duration time, std::function<void()> job) {
  auto timer = std::make_shared<boost::asio::steady_timer>(state_->context, time);
  timer->async_wait([timer, job = std::move(job)](const boost::system::error_code& error) {
    if (!error) {
      job();
    }
  });
}

bool Loop::RunUntil(TimePoint deadline, const std::function<bool()>& done) {
  for (bool isLate = false;;) {
    if (done()) {
      return true;
    }
    if (state_->signal != 0) {
      throw Interrupted{state_->signal};
    }
    if (isLate) {
      return false;
    }
    state_->context.restart();
    if (state_->context.run_one_until(deadline) == 0 && Clock::now() >= deadline) {
      // Asio looks at nothing once the time is up, but who always comes too late must still hear of a signal.
      state_->context.poll_one();
      isLate = true;
    }
  }
}

}  // namespace tarn7::tool
