#include "platform/include/log.h"

#include <map>
#include <mutex>
#include <utility>

#include "platform/log/carrier.h"
#include "platform/log/settings.h"

namespace ara::log {

class LoggerImpl::Sink {
 public:
  Sink(const std::string& contextId, const std::string& description, LogLevel level)
      : level_(Settings::Get().level.value_or(level)), carrier_(MakeCarrier(contextId, description)) {}

  LogLevel Level() const noexcept { return level_; }
  Carrier& Out() const noexcept { return *carrier_; }

 private:
  static std::unique_ptr<Carrier> MakeCarrier(const std::string& contextId, const std::string& description) {
#ifdef TARN7_LOG_HAS_DLT
    if (Settings::Get().dlt) {
      return MakeDltCarrier(contextId, description);
    }
#else
    static_cast<void>(description);
#endif
    return MakeStderrCarrier(contextId);
  }

  const LogLevel level_;
  const std::unique_ptr<Carrier> carrier_;
};

LoggerImpl::LoggerImpl(std::string contextId, std::string description, LogLevel level)
    : sink_(std::make_unique<Sink>(contextId, description, level)) {}

LoggerImpl::~LoggerImpl() = default;

bool LoggerImpl::IsEnabled(LogLevel level) const noexcept { return level != LogLevel::kOff && level <= sink_->Level(); }

void LoggerImpl::Write(LogLevel level, const char* source, const char* function, int line,
                       const std::string& text) const {
  if (*source == '\0') {
    sink_->Out().Write(level, text);
    return;
  }
  std::string located;
  located.append(source).append(":").append(function).append(":").append(std::to_string(line)).append(": ");
  sink_->Out().Write(level, located.append(text));
}

LogStream::LogStream(const LoggerImpl& logger, LogLevel level) : logger_(logger), level_(level) {
  if (logger.IsEnabled(level)) {
    text_ = std::make_unique<std::ostringstream>();
  }
}

LogStream::LogStream(LogStream&& other) noexcept
    : logger_(other.logger_),
      level_(other.level_),
      source_(other.source_),
      function_(other.function_),
      line_(other.line_),
      text_(std::move(other.text_)) {}

LogStream::~LogStream() {
  if (text_ == nullptr) {
    return;
  }
  try {
    logger_.Write(level_, source_, function_, line_, text_->str());
  } catch (const std::exception&) {
    // Out of memory. Losing the entry is all that is left: whoever logs must not fail by it.
  }
}

LogStream& LogStream::WithLocation(const char* source, const char* function, int line) noexcept {
  source_ = source;
  function_ = function;
  line_ = line;
  return *this;
}

LoggerImpl& CreateLogger(std::string_view contextId, std::string_view description, LogLevel level) {
  constexpr std::size_t kMaxContextId = 4;
  // Neither the loggers nor their table are ever destroyed: destructors of other static objects still log.
  static auto& mutex = *new std::mutex;  // guards loggers
  static auto& loggers = *new std::map<std::string, LoggerImpl, std::less<>>;

  const std::string_view id = contextId.substr(0, kMaxContextId);
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = loggers.find(id);
  if (found != loggers.end()) {
    return found->second;
  }
  return loggers.try_emplace(std::string(id), std::string(id), std::string(description), level).first->second;
}

}  // namespace ara::log
