#include "tools/tarn7/recording/replay.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace tarn7::tool {

namespace {

constexpr double kLongest = 1e9;         // seconds: what the clock can take, and longer than anybody waits
constexpr std::size_t kMostAtOnce = 64;  // samples, so that a signal is heard in between

}  // namespace

Replay::Replay(const std::string& path, const std::vector<FieldAddress>& fields, double speed) {
  double offset = 0;
  double last = 0;
  for (RecordedSample& sample : ReadRecording(path, fields)) {
    // A clock that was set back while recording costs no time.
    offset += first_values_.empty() ? 0 : std::max(0.0, sample.time - last) / speed;
    last = sample.time;
    const auto [firstValue, isFirst] = first_values_.try_emplace(sample.field);
    if (isFirst) {
      firstValue->second = std::move(sample.payload);
      continue;
    }
    const std::chrono::duration<double> due(std::min(offset, kLongest));
    offsets_.push_back(std::chrono::duration_cast<Loop::Clock::duration>(due));
    samples_.push_back(std::move(sample));
  }
}

Loop::TimePoint Replay::Next() const noexcept {
  return next_ == samples_.size() ? Loop::kForever : begin_ + offsets_[next_];
}

void Replay::PlayUntil(Loop::TimePoint now, const Play& play) {
  if (next_ == samples_.size()) {
    return;
  }
  const std::size_t end = std::min(samples_.size(), next_ + kMostAtOnce);
  for (; next_ < end && begin_ + offsets_[next_] <= now; ++next_) {
    play(*samples_[next_].field, samples_[next_].payload);
  }
  if (next_ == samples_.size()) {
    std::cerr << "the recording is at its end; its last values stay" << std::endl;
  }
}

}  // namespace tarn7::tool
