#include "tools/tarn7/commands/command.h"

#include <iostream>

#include "tools/tarn7/error.h"

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

Replay ReplayOptions::Read(const std::vector<FieldAddress>& fields) const {
  return IsGiven() ? Replay(file, fields, speed) : Replay();
}

void AddReplayOptions(CLI::App& command, ReplayOptions& options) {
  constexpr double kSlowest = 0.001;
  constexpr double kFastest = 1e6;
  auto* const replay =
      command
          .add_option("--replay", options.file,
                      "Recording to play back with its timing, as tarn7 watch writes it; - reads standard input")
          ->type_name("FILE");
  command.add_option("--speed", options.speed, "How many times as fast the recording is played; 1 if not given")
      ->type_name("X")
      ->check(CLI::Range(kSlowest, kFastest).description(""))
      ->needs(replay);
}

void RequireOneReaderOfStandardInput(std::initializer_list<std::pair<const char*, bool>> options) {
  std::string readers;
  std::size_t count = 0;
  for (const auto& [name, reads] : options) {
    if (reads) {
      readers += (count++ == 0 ? "" : " and ") + std::string(name);
    }
  }
  if (count > 1) {
    throw CommandError(Status::kUsage, readers + " would both read standard input");
  }
}

void ReportOffer(const Interface& interface, std::uint16_t instance) {
  std::cerr << "offering " << interface.name << ", instance " << instance << ": service 0x" << std::hex
            << interface.service_id << std::dec << ", version " << static_cast<int>(interface.major_version) << '.'
            << interface.minor_version << ", " << interface.fields.size() << " fields" << std::endl;
}

}  // namespace tarn7::tool
