#pragma once

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/include/visibility.h"

namespace ara::log {

/// Most severe first; each level includes those above it.
enum class LogLevel : std::uint8_t { kOff = 0, kFatal = 1, kError = 2, kWarn = 3, kInfo = 4, kDebug = 5, kVerbose = 6 };

class LoggerImpl;

/// One log entry in the making: takes its parts through `<<`, one after another without separators, and is written when
/// it is destroyed. Parts of an entry whose level is switched off are not formatted.
class ARA_PLATFORM_API LogStream {
 public:
  LogStream(const LoggerImpl& logger, LogLevel level);
  LogStream(LogStream&& other) noexcept;
  LogStream& operator=(LogStream&&) = delete;
  ~LogStream();

  /// Where the entry comes from. `source` and `function` must be static texts.
  LogStream& WithLocation(const char* source, const char* function, int line) noexcept;

  template <typename T>
  LogStream& operator<<(const T& part) {
    if (text_ != nullptr) {
      if constexpr (sizeof(T) == 1 && std::is_integral_v<T> && !std::is_same_v<T, char> && !std::is_same_v<T, bool>) {
        *text_ << static_cast<int>(part);
      } else {
        *text_ << part;
      }
    }
    return *this;
  }

 private:
  const LoggerImpl& logger_;
  LogLevel level_;
  const char* source_ = "";
  const char* function_ = "";
  int line_ = 0;
  std::unique_ptr<std::ostringstream> text_;  // null when the level is switched off, or moved from
};

/// One log context. Lives until the process ends. All operations may be called from any thread.
class ARA_PLATFORM_API LoggerImpl {
 public:
  LoggerImpl(std::string contextId, std::string description, LogLevel level);
  ~LoggerImpl();
  LoggerImpl(const LoggerImpl&) = delete;
  LoggerImpl& operator=(const LoggerImpl&) = delete;

  LogStream LogFatal() const { return {*this, LogLevel::kFatal}; }
  LogStream LogError() const { return {*this, LogLevel::kError}; }
  LogStream LogWarn() const { return {*this, LogLevel::kWarn}; }
  LogStream LogInfo() const { return {*this, LogLevel::kInfo}; }
  LogStream LogDebug() const { return {*this, LogLevel::kDebug}; }
  LogStream LogVerbose() const { return {*this, LogLevel::kVerbose}; }

  bool IsEnabled(LogLevel level) const noexcept;

 private:
  friend class LogStream;
  class Sink;

  void Write(LogLevel level, const char* source, const char* function, int line, const std::string& text) const;

  std::unique_ptr<Sink> sink_;
};

/// The logger of a context, made on the first call for that id. `contextId` has at most four characters (DLT's limit);
/// `level` is the most verbose level that is written unless the environment says otherwise.
ARA_PLATFORM_API LoggerImpl& CreateLogger(std::string_view contextId, std::string_view description,
                                          LogLevel level = LogLevel::kWarn);

}  // namespace ara::log
