#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/wireshark/profile.h"

namespace tarn7::tool {

namespace {

namespace fs = std::filesystem;

struct WiresharkOptions {
  std::string folder;
  bool force = false;
};

/// Begins each file, so that it is known again. Wireshark takes such a line for a comment.
constexpr const char* kMark = "# Written by tarn7 wireshark";

bool IsOurs(const fs::path& path) {
  std::ifstream file(path);
  std::string line;
  return std::getline(file, line) && line == kMark;
}

void WriteProfile(const WiresharkOptions& options) {
  const fs::path folder = options.folder;
  const auto files = MakeWiresharkProfile(Interfaces());
  for (const auto& [name, text] : files) {
    if (!options.force && fs::exists(folder / name) && !IsOurs(folder / name)) {
      throw CommandError(Status::kUsage, (folder / name).string() +
                                             " was not written by this command: name another folder, or --force");
    }
  }
  std::error_code error;
  fs::create_directories(folder, error);
  for (const auto& [name, text] : files) {
    std::ofstream file(folder / name);
    file << kMark << '\n' << text << std::flush;
    if (!file) {
      throw CommandError(Status::kUsage, (folder / name).string() + " cannot be written: " + std::strerror(errno));
    }
  }
  std::cerr << files.size() << " files written; with them: WIRESHARK_CONFIG_DIR=" << options.folder << " wireshark"
            << std::endl;
}

}  // namespace

void AddWiresharkCommand(CLI::App& tool, Command& chosen) {
  auto* const command =
      tool.add_subcommand("wireshark", "Write a Wireshark profile that shows all fields and members by name");
  const auto options = std::make_shared<WiresharkOptions>();
  command->add_option("DIR", options->folder, "The profile's folder; is made where it is missing")->required();
  command->add_flag("--force", options->force, "Replace files that this command has not written");
  command->footer(
      "Example:\n"
      "  tarn7 wireshark ~/.config/wireshark/profiles/tarn7\n"
      "  tshark -C tarn7 -i lo -V -Y someip.payload.energysystem.notifications.member0");
  command->callback([&chosen, options] { chosen = [options](Output&) { WriteProfile(*options); }; });
}

}  // namespace tarn7::tool
