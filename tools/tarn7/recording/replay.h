#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/field_values.h"
#include "tools/tarn7/recording/recording.h"

namespace tarn7::tool {

/// Plays a recording back with the times between its samples. Used from one thread.
class Replay {
 public:
  using Play = std::function<void(const Field& field, const Payload& payload)>;

  /// Plays nothing.
  Replay() = default;
  /// `speed` 2 halves the times. Throws ValueError for what is no recording of the fields' interfaces.
  Replay(const std::string& path, const std::vector<FieldAddress>& fields, double speed);

  /// What each recorded field has from the beginning. A recording begins with the values as they stood.
  const FieldValues& FirstValues() const noexcept { return first_values_; }

  /// The recording begins now.
  void Start(Loop::TimePoint now) noexcept { begin_ = now; }
  /// When there is something to play; kForever after the end.
  Loop::TimePoint Next() const noexcept;
  /// Plays what was due until `now`, in its order; the next call goes on where that is much. Says on standard error
  /// when that was all.
  void PlayUntil(Loop::TimePoint now, const Play& play);

 private:
  FieldValues first_values_;
  std::vector<RecordedSample> samples_;         // all but the first values
  std::vector<Loop::Clock::duration> offsets_;  // of each, from the beginning; never falls
  std::size_t next_ = 0;
  Loop::TimePoint begin_;
};

}  // namespace tarn7::tool
