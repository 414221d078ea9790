#include "tools/tarn7/client/call_error.h"

#include <sstream>

#include "core_types/error_domain.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

void ThrowCallError(const ara::core::ErrorCode& code) {
  std::ostringstream text;
  text << "the call failed: domain " << code.Domain().Name() << " (0x" << std::hex << code.Domain().Id() << std::dec
       << "), code " << code.Value() << ": " << code.Message();
  throw CommandError(Status::kCallFailed, text.str());
}

}  // namespace tarn7::tool
