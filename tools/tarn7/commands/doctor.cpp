#include <algorithm>
#include <dlfcn.h>
#include <filesystem>

#include <vsomeip/vsomeip.hpp>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

/// The file that the stack was loaded from.
std::string StackFile() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<const void*>(&vsomeip::runtime::get), &info) == 0) {
    return "a file that cannot be told";
  }
  std::error_code error;
  const std::filesystem::path file = std::filesystem::canonical(info.dli_fname, error);
  return error ? info.dli_fname : file.string();
}

Findings Examine(const InterfaceTable& interfaces, std::chrono::milliseconds time) {
  Findings findings;
  findings.push_back(Finding::Ok("stack", GetBuildInfo().StackName() + ", loaded from " + StackFile()));
  const StackConfiguration configuration = ReadStackConfiguration(findings);
  CheckConfigurationKeys(configuration, findings);
  CheckUnicast(configuration, findings);
  CheckMulticast(configuration, findings);
  CheckPorts(configuration, findings);
  CheckRoutingHost(configuration, findings);
  CheckServices(interfaces, time, findings);
  return findings;
}

}  // namespace

void Doctor(const Context& context, const DoctorOptions& options) {
  const Findings findings = Examine(context.interfaces, std::chrono::milliseconds(options.timeout));
  if (options.as_json) {
    context.output.WriteLine(ToJsonText(findings));
  } else {
    for (const Finding& finding : findings) {
      context.output.WriteLine(Printable(ToText(finding)));
    }
  }
  const auto problems = std::count_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.level == Finding::Level::kProblem; });
  if (problems > 0) {
    throw CommandError(Status::kCallFailed, std::to_string(problems) + (problems == 1 ? " problem" : " problems"));
  }
}

}  // namespace tarn7::tool
