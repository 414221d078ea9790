#pragma once

#include "platform/include/log.h"

namespace ara::com::internal::vsomeip::common {

/// The library's own log context.
inline ara::log::LoggerImpl& GetLogger() {
  static ara::log::LoggerImpl& logger = ara::log::CreateLogger("T7GN", "Vehicle services over SOME/IP");
  return logger;
}

/// Begins a warning that says where it comes from.
inline ara::log::LogStream LogWarning(const char* source, const char* function, int line) {
  ara::log::LogStream stream = GetLogger().LogWarn();
  stream.WithLocation(source, function, line);
  return stream;
}

}  // namespace ara::com::internal::vsomeip::common
