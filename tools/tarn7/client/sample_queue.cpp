#include "tools/tarn7/client/sample_queue.h"

#include <utility>

namespace tarn7::tool {

void SampleQueue::Push(Payload sample) {
  const std::lock_guard<std::mutex> lock(mutex_);
  while (!samples_.empty() && (samples_.size() == kMaxSamples || bytes_ + sample.size() > kMaxBytes)) {
    bytes_ -= samples_.front().size();
    samples_.pop_front();
    ++dropped_;
  }
  bytes_ += sample.size();
  samples_.push_back(std::move(sample));
}

std::optional<Payload> SampleQueue::Take() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (samples_.empty()) {
    return std::nullopt;
  }
  std::optional<Payload> sample = std::move(samples_.front());
  samples_.pop_front();
  bytes_ -= sample->size();
  return sample;
}

std::uint64_t SampleQueue::CountDropped() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return dropped_;
}

}  // namespace tarn7::tool
