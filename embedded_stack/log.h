#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <exception>
#include <mutex>
#include <sstream>
#include <string>

namespace vsomeip_v3::embedded {

enum class LogLevel : int { kNone = 0, kError, kWarning, kInfo, kDebug };

// Lines on standard error, each with the level and the application's name. One per application; thread-safe. Writing
// one throws nothing.
class Log {
 public:
  explicit Log(std::string name) : name_(std::move(name)) {}

  void SetName(const std::string& name);
  void SetLevel(LogLevel level);

  template <typename... Parts>
  void Error(const Parts&... parts) {
    Write(LogLevel::kError, parts...);
  }
  template <typename... Parts>
  void Warning(const Parts&... parts) {
    Write(LogLevel::kWarning, parts...);
  }
  template <typename... Parts>
  void Info(const Parts&... parts) {
    Write(LogLevel::kInfo, parts...);
  }

  template <typename... Parts>
  void Write(LogLevel level, const Parts&... parts) {
    try {
      std::ostringstream text;
      (text << ... << parts);
      WriteLine(level, text.str());
    } catch (const std::exception&) {  // no memory: one line less
    }
  }

 private:
  void WriteLine(LogLevel level, const std::string& text);

  std::mutex mutex_;  // guards both
  std::string name_;
  LogLevel level_ = LogLevel::kWarning;
};

// A number as it is written in SOME/IP tables: 0x and four digits.
std::string Hex(std::uint16_t value);

// Why something from the wire, or on its way there, was thrown away.
enum class Drop : std::size_t {
  kMalformed,        // header or length wrong
  kBadDiscovery,     // a discovery message that cannot be understood, or from a port that is not discovery's
  kForeignAddress,   // discovery from, or naming, an address outside of this node's network, or naming its own
  kBadSegment,       // a segment that does not continue its message
  kReassemblyLimit,  // too many or too large unfinished messages, or unfinished for too long
  kNobodyAsked,      // a response or notification from no service that is used, or of no subscribed event
  kUnknownService,   // a request for what is not offered here
  kWrongVersion,     // protocol or interface version
  kUnknownMethod,    // a request for which no handler is registered
  kQueueFull,        // handlers do not keep up
  kSendQueueFull,    // a receiver does not keep up with what is sent to it
  kDiscoveryLimit,   // more offers, peers or subscribers than are kept
  kNoMemory,         // for what came
  kDuplicateOffer,   // a second node offers an instance that is in use from another
  kCount
};

// Counts drops and reports the first and then, at most once a second and reason, how many there were.
// Not synchronized: belongs to whoever holds the application's lock.
class DropCounter {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  explicit DropCounter(Log& log) : log_(log) {}
  void Count(Drop reason, const std::string& detail, TimePoint now, std::uint64_t count = 1);
  std::uint64_t Total(Drop reason) const { return reasons_[static_cast<std::size_t>(reason)].total; }

 private:
  struct Reason {
    std::uint64_t total = 0;
    std::uint64_t reported = 0;
    TimePoint next_report;
  };
  Log& log_;
  std::array<Reason, static_cast<std::size_t>(Drop::kCount)> reasons_;
};

}  // namespace vsomeip_v3::embedded
