#pragma once

#include <string>

#include "ara/com/internal/vsomeip/common/log_limit.h"

namespace tarn7::tool {

/// Lines of one kind on standard error, which a peer can cause: some at once, further ones at one a second. From any
/// thread.
class LimitedReport {
 public:
  /// Says at its end how many lines were left out before. The text's control characters are escaped.
  void Write(const std::string& text);

 private:
  ara::com::internal::vsomeip::common::LogLimit limit_;
};

}  // namespace tarn7::tool
