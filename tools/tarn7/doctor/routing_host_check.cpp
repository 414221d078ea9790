#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/doctor/port_holders.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kCheck = "routing host";

fs::path BasePath() {
  const char* const path = std::getenv("VSOMEIP_BASE_PATH");
  return path == nullptr ? "/tmp" : path;
}

/// The host holds a lock on a file for as long as it lives.
Finding CheckLock(const StackConfiguration& configuration) {
  const std::string path = BasePath() / (configuration.network + ".lck");
  const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (file < 0 && errno != ENOENT) {
    return Finding::Problem(kCheck, path + " cannot be opened: " + std::strerror(errno),
                            "end the host of the other user and remove the file, or configure another \"network\"");
  }
  struct flock lock {};
  lock.l_type = F_WRLCK;
  const bool isHeld = file >= 0 && ::fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
  if (file >= 0) {
    ::close(file);
  }
  if (isHeld) {
    return Finding::Ok(kCheck, ProcessName(lock.l_pid));
  }
  if (!configuration.routing_host.empty()) {
    return Finding::Problem(kCheck, '\'' + configuration.routing_host + "', which \"routing\" names, is not running",
                            "start it before all others, or take \"routing\" out of the configuration");
  }
  return Finding::Ok(kCheck, "none yet: the first application becomes it");
}

/// The sockets with a name that some process has open.
std::set<std::string> OpenSockets() {
  std::set<std::string> paths;
  std::ifstream table("/proc/net/unix");
  for (std::string line; std::getline(table, line);) {
    const std::size_t path = line.find('/');
    if (path != std::string::npos) {
      paths.insert(line.substr(path));
    }
  }
  return paths;
}

void CheckLeftovers(const StackConfiguration& configuration, Findings& findings) {
  const std::set<std::string> open = OpenSockets();
  std::string left;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(BasePath(), ignored)) {
    const std::string name = entry.path().filename();
    if (name.rfind(configuration.network + '-', 0) == 0 && entry.is_socket(ignored) && open.count(entry.path()) == 0) {
      left += ' ' + ShellWord(entry.path().string());
    }
  }
  if (!left.empty()) {
    findings.push_back(Finding::Warning(kCheck, "sockets of processes that are gone are left behind", "rm --" + left));
  }
}

}  // namespace

void CheckRoutingHost(const StackConfiguration& configuration, Findings& findings) {
  if (GetBuildInfo().HasEmbeddedStack()) {
    findings.push_back(Finding::Ok(kCheck, "the embedded stack needs none"));
    return;
  }
  findings.push_back(CheckLock(configuration));
  CheckLeftovers(configuration, findings);
}

}  // namespace tarn7::tool
