#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/include/log.h"

namespace ara::log {

/// What the environment says about the log. Wrong values are reported on standard error, once, and count as absent.
struct Settings {
  std::optional<LogLevel> level;  ///< TARN7_LOG_LEVEL: off, fatal, error, warn, info, debug or verbose
  bool dlt = false;               ///< TARN7_LOG_SINK: stderr (the default) or dlt

  /// Read on the first call.
  static const Settings& Get();
};

std::optional<LogLevel> ParseLevel(std::string_view name) noexcept;

}  // namespace ara::log
