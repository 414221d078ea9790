#pragma once

#include "platform/include/log.h"

namespace ara::com::internal::vsomeip {

/// The log of the SOME/IP binding.
inline ara::log::LoggerImpl& PlatformLog() {
  static ara::log::LoggerImpl& logger = ara::log::CreateLogger("SIPB", "SOME/IP binding of the host platform");
  return logger;
}

}  // namespace ara::com::internal::vsomeip
