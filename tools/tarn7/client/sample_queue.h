#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// The samples of one field that wait for whoever shows them, perhaps behind a slow reader of standard output. Bounded:
/// beyond that the oldest go. The newest one stays, however large. From any thread.
class SampleQueue {
 public:
  static constexpr std::size_t kMaxSamples = 256;
  static constexpr std::size_t kMaxBytes = std::size_t{16} << 20U;

  void Push(Payload sample);
  /// The oldest one.
  std::optional<Payload> Take();
  /// How many went unseen.
  std::uint64_t CountDropped() const;

 private:
  mutable std::mutex mutex_;  // guards the members
  std::deque<Payload> samples_;
  std::size_t bytes_ = 0;
  std::uint64_t dropped_ = 0;
};

}  // namespace tarn7::tool
