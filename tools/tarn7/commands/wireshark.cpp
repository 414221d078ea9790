#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/printable.h"
#include "tools/tarn7/wireshark/profile.h"

namespace tarn7::tool {

namespace {

namespace fs = std::filesystem;

/// Begins each file, so that it is known again. Wireshark takes such a line for a comment.
constexpr const char* kMark = "# Written by tarn7 wireshark";

bool IsOurs(const fs::path& path) {
  std::ifstream file(path);
  std::string line;
  return std::getline(file, line) && line == kMark;
}

}  // namespace

void WriteWiresharkProfile(const Context& context, const WiresharkOptions& options) {
  const fs::path folder = options.folder;
  const auto files = MakeWiresharkProfile(context.interfaces.All());
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
  std::cerr << files.size() << " files written; with them: WIRESHARK_CONFIG_DIR=" << ShellWord(options.folder)
            << " wireshark" << std::endl;
}

}  // namespace tarn7::tool
