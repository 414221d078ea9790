#include "tools/tarn7/doctor/port_holders.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <vector>

#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

namespace fs = std::filesystem;

struct BoundSocket {
  std::string inode;
  unsigned user;
};

/// From the kernel's table: number, address:port, remote, state, queues, timer, retransmissions, user, timeout, inode.
std::vector<BoundSocket> SocketsAt(std::uint16_t port, const std::string& address) {
  std::vector<BoundSocket> sockets;
  std::ifstream table("/proc/net/udp");
  std::string line;
  for (std::getline(table, line); std::getline(table, line);) {
    unsigned boundAddress = 0;
    unsigned boundPort = 0;
    unsigned user = 0;
    char inode[24] = {};
    if (std::sscanf(line.c_str(), "%*s %x:%x %*s %*s %*s %*s %*s %u %*s %23s", &boundAddress, &boundPort, &user,
                    inode) != 4 ||
        boundPort != port) {
      continue;
    }
    if (address.empty() || boundAddress == INADDR_ANY || boundAddress == ::inet_addr(address.c_str())) {
      sockets.push_back({inode, user});
    }
  }
  return sockets;
}

bool IsNumber(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Which process has which socket, as far as this user may see it.
std::map<std::string, pid_t> SocketOwners() {
  std::map<std::string, pid_t> owners;
  std::error_code ignored;  // processes end while they are looked at
  for (const auto& process : fs::directory_iterator("/proc", ignored)) {
    const std::string name = process.path().filename();
    if (!IsNumber(name)) {
      continue;
    }
    std::error_code unreadable;
    for (fs::directory_iterator file(process.path() / "fd", unreadable), end; !unreadable && file != end;
         file.increment(unreadable)) {
      const std::string target = fs::read_symlink(file->path(), ignored);
      owners.emplace(target, std::stoi(name));
    }
  }
  return owners;
}

}  // namespace

std::string ProcessName(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return (name.empty() ? "unknown" : ShellWord(name)) + " (process " + std::to_string(process) + ')';
}

std::string UdpPortHolders(std::uint16_t port, const std::string& address) {
  const std::vector<BoundSocket> sockets = SocketsAt(port, address);
  const auto owners = sockets.empty() ? std::map<std::string, pid_t>() : SocketOwners();
  std::set<std::string> names;
  for (const BoundSocket& socket : sockets) {
    const auto owner = owners.find("socket:[" + socket.inode + ']');
    names.insert(owner == owners.end() ? "a process of user " + std::to_string(socket.user)
                                       : ProcessName(owner->second));
  }
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

}  // namespace tarn7::tool
