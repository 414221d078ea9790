#include "tools/tarn7/build_info.h"

namespace tarn7::tool {

std::string BuildInfo::StackName() const {
  return HasEmbeddedStack() ? "embedded stack" : std::string(stack) + ' ' + stack_version;
}

const BuildInfo& GetBuildInfo() {
  static constexpr BuildInfo kInfo{TARN7_VERSION, TARN7_STACK_NAME, TARN7_STACK_VERSION};
  return kInfo;
}

}  // namespace tarn7::tool
