#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <memory>

#include <vsomeip/vsomeip.hpp>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

namespace {

struct DoctorOptions : ServiceOptions {
  bool as_json = false;
};

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

Findings Examine(std::chrono::milliseconds time) {
  Findings findings;
  findings.push_back(Finding::Ok("stack", GetBuildInfo().StackName() + ", loaded from " + StackFile()));
  const StackConfiguration configuration = ReadStackConfiguration(findings);
  CheckConfigurationKeys(configuration, findings);
  CheckUnicast(configuration, findings);
  CheckMulticast(configuration, findings);
  CheckPorts(configuration, findings);
  CheckRoutingHost(configuration, findings);
  CheckServices(time, findings);
  return findings;
}

void Doctor(Output& output, const DoctorOptions& options) {
  const Findings findings = Examine(std::chrono::milliseconds(options.timeout));
  if (options.as_json) {
    Json array = Json::array();
    for (const Finding& finding : findings) {
      array.push_back(ToJson(finding));
    }
    output.WriteLine(ToText(array));
  } else {
    for (const Finding& finding : findings) {
      output.WriteLine(ToText(finding));
    }
  }
  const auto problems = std::count_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.level == Finding::Level::kProblem; });
  if (problems > 0) {
    throw CommandError(Status::kCallFailed, std::to_string(problems) + (problems == 1 ? " problem" : " problems"));
  }
}

}  // namespace

void AddDoctorCommand(CLI::App& tool, Command& chosen) {
  auto* const command =
      tool.add_subcommand("doctor", "Check what usually goes wrong on this machine, and say what to do about it");
  const auto options = std::make_shared<DoctorOptions>();
  AddTimeoutOption(*command, *options, "How long to look for the services; 2000 if not given");
  command->add_flag("--json", options->as_json, "As JSON instead of a line for each check");
  command->footer(
      "Example:\n  VSOMEIP_CONFIGURATION=vehicle.json tarn7 doctor\nExit status: 3 where there is a problem");
  command->callback([&chosen, options] { chosen = [options](Output& output) { Doctor(output, *options); }; });
}

}  // namespace tarn7::tool
