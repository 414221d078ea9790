#include "platform/log/settings.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "platform/log/carrier.h"

namespace ara::log {

namespace {

#ifdef TARN7_LOG_HAS_DLT
constexpr bool kHasDlt = true;
#else
constexpr bool kHasDlt = false;
#endif

void Report(const std::string& text) { MakeStderrCarrier("LOG")->Write(LogLevel::kWarn, text); }

Settings ReadEnvironment() {
  Settings settings;
  if (const char* level = std::getenv("TARN7_LOG_LEVEL")) {
    settings.level = ParseLevel(level);
    if (!settings.level) {
      Report("TARN7_LOG_LEVEL is '" + std::string(level) +
             "': it must be off, fatal, error, warn, info, debug or verbose");
    }
  }
  if (const char* sink = std::getenv("TARN7_LOG_SINK")) {
    const std::string_view name = sink;
    settings.dlt = name == "dlt" && kHasDlt;
    if (name == "dlt" && !kHasDlt) {
      Report("TARN7_LOG_SINK is 'dlt', but this library was built without DLT: logging to standard error");
    } else if (name != "dlt" && name != "stderr") {
      Report("TARN7_LOG_SINK is '" + std::string(name) + "': it must be stderr or dlt");
    }
  }
  return settings;
}

}  // namespace

const Settings& Settings::Get() {
  static const Settings settings = ReadEnvironment();
  return settings;
}

std::optional<LogLevel> ParseLevel(std::string_view name) noexcept {
  constexpr std::array<std::pair<std::string_view, LogLevel>, 7> kLevels{{{"off", LogLevel::kOff},
                                                                          {"fatal", LogLevel::kFatal},
                                                                          {"error", LogLevel::kError},
                                                                          {"warn", LogLevel::kWarn},
                                                                          {"info", LogLevel::kInfo},
                                                                          {"debug", LogLevel::kDebug},
                                                                          {"verbose", LogLevel::kVerbose}}};
  for (const auto& [known, level] : kLevels) {
    if (known == name) {
      return level;
    }
  }
  return std::nullopt;
}

}  // namespace ara::log
