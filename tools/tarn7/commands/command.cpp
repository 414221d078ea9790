#include "tools/tarn7/commands/command.h"

#include <iostream>

namespace tarn7::tool {

CLI::Option* AddInstanceOption(CLI::App& command, ServiceOptions& options) {
  constexpr int kLastInstance = 0xFFFE;  // 0xFFFF stands for any
  return command.add_option("--instance", options.instance, "Instance id, decimal or 0x; 1 if not given")
      ->type_name("ID")
      ->check(CLI::Range(1, kLastInstance).description(""));
}

CLI::Option* AddTimeoutOption(CLI::App& command, ServiceOptions& options, const std::string& description) {
  return command.add_option("--timeout", options.timeout, description)->type_name("MS");
}

void ReportOffer(const Interface& interface, std::uint16_t instance) {
  std::cerr << "offering " << interface.name << ", instance " << instance << ": service 0x" << std::hex
            << interface.service_id << std::dec << ", version " << static_cast<int>(interface.major_version) << '.'
            << interface.minor_version << ", " << interface.fields.size() << " fields" << std::endl;
}

}  // namespace tarn7::tool
