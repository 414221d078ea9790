#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include "platform/log/carrier.h"

namespace ara::log {

namespace {

const char* NameOf(LogLevel level) noexcept {
  switch (level) {
    case LogLevel::kFatal:
      return "fatal";
    case LogLevel::kError:
      return "error";
    case LogLevel::kWarn:
      return "warning";
    case LogLevel::kInfo:
      return "info";
    case LogLevel::kDebug:
      return "debug";
    case LogLevel::kVerbose:
      return "verbose";
    case LogLevel::kOff:
      break;
  }
  return "off";
}

class StderrCarrier final : public Carrier {
 public:
  explicit StderrCarrier(const std::string& contextId)
      // A logger of our own, not one of spdlog's registry: that one goes down with the other static objects.
      : logger_(contextId, std::make_shared<spdlog::sinks::stderr_sink_mt>()), context_("] [" + contextId + "] ") {
    logger_.set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
  }

  void Write(LogLevel level, const std::string& text) override {
    // spdlog has other names for two of the levels, so the name is part of the text. Levels were filtered before.
    const std::string line = std::string("[").append(NameOf(level)).append(context_).append(text);
    logger_.log(spdlog::level::critical, spdlog::string_view_t(line));
  }

 private:
  spdlog::logger logger_;
  const std::string context_;
};

}  // namespace

std::unique_ptr<Carrier> MakeStderrCarrier(const std::string& contextId) {
  return std::make_unique<StderrCarrier>(contextId);
}

}  // namespace ara::log
