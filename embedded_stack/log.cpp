#include "embedded_stack/log.h"

#include <cstdio>

namespace vsomeip_v3::embedded {

namespace {
constexpr std::array<const char*, 5> kLevelNames = {"none", "error", "warning", "info", "debug"};
constexpr std::array<const char*, static_cast<std::size_t>(Drop::kCount)> kDropNames = {
    "malformed message",
    "unusable discovery message",
    "discovery from, or for, an address that it must not name",
    "segment out of place",
    "unfinished segmented message",
    "response or notification that nobody waits for",
    "request for an unknown service",
    "wrong version",
    "request without a handler",
    "handler queue full",
    "send queue full",
    "discovery table full",
    "no memory for a datagram",
    "instance offered by a second node",
};
constexpr std::chrono::seconds kReportInterval{1};
}  // namespace

void Log::SetName(const std::string& name) {
  const std::lock_guard<std::mutex> lock(mutex_);
  name_ = name;
}

void Log::SetLevel(LogLevel level) {
  const std::lock_guard<std::mutex> lock(mutex_);
  level_ = level;
}

void Log::WriteLine(LogLevel level, const std::string& text) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (level > level_) return;
  const std::string line =
      "someip [" + std::string(kLevelNames[static_cast<std::size_t>(level)]) + "] " + name_ + ": " + text + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);  // one call, so that lines of several processes do not mix
}

std::string Hex(std::uint16_t value) {
  std::array<char, 7> text{};
  std::snprintf(text.data(), text.size(), "0x%04x", static_cast<unsigned>(value));
  return text.data();
}

void DropCounter::Count(Drop reason, const std::string& detail, TimePoint now, std::uint64_t count) {
  Reason& entry = reasons_[static_cast<std::size_t>(reason)];
  entry.total += count;
  if (count == 0 || now < entry.next_report) return;
  const char* const name = kDropNames[static_cast<std::size_t>(reason)];
  const auto unreported = entry.total - entry.reported;
  // What is on its way while a subscription or a service ends is no reason to worry.
  const LogLevel level = reason == Drop::kNobodyAsked ? LogLevel::kInfo : LogLevel::kWarning;
  log_.Write(level, "dropped: ", name, " (", detail, "), ", unreported, " since the last report");
  entry.reported = entry.total;
  entry.next_report = now + kReportInterval;
}

}  // namespace vsomeip_v3::embedded
