#pragma once

#include <string>

namespace tarn7::tool {

/// What this tool was built as.
struct BuildInfo {
  const char* version;        ///< the project's
  const char* stack;          ///< "embedded" or "vsomeip3"
  const char* stack_version;  ///< of the stack that was there when building

  bool HasEmbeddedStack() const { return stack == std::string("embedded"); }
  /// "vsomeip3 3.4.10", or "embedded stack", whose version is the project's.
  std::string StackName() const;
};

const BuildInfo& GetBuildInfo();

}  // namespace tarn7::tool
