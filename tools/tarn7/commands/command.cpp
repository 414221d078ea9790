#include "tools/tarn7/commands/command.h"

namespace tarn7::tool {

void AddInstanceOption(CLI::App& command, ServiceOptions& options) {
  constexpr int kLastInstance = 0xFFFE;  // 0xFFFF stands for any
  command.add_option("--instance", options.instance, "Instance id, decimal or 0x; 1 if not given")
      ->type_name("ID")
      ->check(CLI::Range(1, kLastInstance).description(""));
}

CLI::Option* AddTimeoutOption(CLI::App& command, ServiceOptions& options, const std::string& description) {
  return command.add_option("--timeout", options.timeout, description)->type_name("MS");
}

}  // namespace tarn7::tool
