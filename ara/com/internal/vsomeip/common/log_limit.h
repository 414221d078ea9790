#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>

#include "ara/com/internal/vsomeip/common/logger.h"

namespace ara::com::internal::vsomeip::common {

/// Keeps a peer from filling the log with entries of one kind: some may come at once, further ones at one a second. Who
/// writes that kind of entry owns the limit, and shares it. From any thread.
class LogLimit {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr int kAtOnce = 10;
  static constexpr std::chrono::seconds kInterval{1};

  /// Whether an entry may be written: how many were left out since the last one, or nothing when this one is left out.
  /// `now` never goes back.
  std::optional<std::uint64_t> Admit(Clock::time_point now = Clock::now()) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const Clock::time_point begin = std::max(used_until_, now);
    if (begin - now > (kAtOnce - 1) * kInterval) {
      ++left_out_;
      return std::nullopt;
    }
    used_until_ = begin + kInterval;
    return std::exchange(left_out_, 0);
  }

 private:
  std::mutex mutex_;              // guards both
  Clock::time_point used_until_;  // each entry uses one interval
  std::uint64_t left_out_ = 0;
};

/// As LogWarning() with all parts of the text, within the limit. Says at its end how many were left out before.
template <typename... Parts>
void LogWarningWithin(LogLimit& limit, const char* source, const char* function, int line, const Parts&... parts) {
  if (const auto leftOut = limit.Admit()) {
    ara::log::LogStream entry = LogWarning(source, function, line);
    (entry << ... << parts);
    if (*leftOut > 0) {
      entry << " (" << *leftOut << " further of this kind were left out)";
    }
  }
}

}  // namespace ara::com::internal::vsomeip::common
