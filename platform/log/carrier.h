#pragma once

#include <memory>
#include <string>

#include "platform/include/log.h"

namespace ara::log {

/// Carries the finished entries of one context to where they are read. May be used from any thread.
class Carrier {
 public:
  virtual ~Carrier() = default;

  /// `text` is one whole entry without time, level and context.
  virtual void Write(LogLevel level, const std::string& text) = 0;
};

std::unique_ptr<Carrier> MakeStderrCarrier(const std::string& contextId);
#ifdef TARN7_LOG_HAS_DLT
std::unique_ptr<Carrier> MakeDltCarrier(const std::string& contextId, const std::string& description);
#endif

}  // namespace ara::log
