#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <vector>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/doctor/udp_socket.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

constexpr const char* kCheck = "unicast";

struct LocalAddress {
  std::string address;
  std::string interface;
  bool is_up;
};

std::vector<LocalAddress> LocalAddresses() {
  ifaddrs* list = nullptr;
  if (::getifaddrs(&list) != 0) {
    return {};
  }
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, &::freeifaddrs);
  std::vector<LocalAddress> addresses;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET) {
      const auto* const address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
      addresses.push_back({boost::asio::ip::address_v4(ntohl(address->sin_addr.s_addr)).to_string(), entry->ifa_name,
                           (entry->ifa_flags & IFF_UP) != 0 && (entry->ifa_flags & IFF_RUNNING) != 0});
    }
  }
  return addresses;
}

Finding CheckAddress(const std::string& address) {
  std::string choice;
  for (const LocalAddress& local : LocalAddresses()) {
    choice += (choice.empty() ? "" : ", ") + local.address + " (" + local.interface + ')';
    if (local.address == address && !local.is_up) {
      return Finding::Problem(kCheck, address + " is on " + local.interface + ", which is down",
                              "ip link set " + ShellWord(local.interface) + " up");
    }
  }
  const std::string remedy = "configure \"unicast\" as one of " + choice;
  try {
    boost::asio::io_context context;
    BindUdp(context, address, 0, false);  // the loopback interface has more addresses than those in the list
  } catch (const boost::system::system_error& error) {
    if (error.code() == boost::system::errc::address_not_available ||
        error.code() == boost::asio::error::invalid_argument) {
      return Finding::Problem(kCheck, address + " is no address of this machine", remedy);
    }
    return Finding::Problem(kCheck, address + " cannot be bound: " + error.code().message(), remedy);
  }
  return Finding::Ok(kCheck, address);
}

}  // namespace

void CheckUnicast(const StackConfiguration& configuration, Findings& findings) {
  if (configuration.unicast.empty()) {
    findings.push_back(Finding::Ok(kCheck, "each application takes a loopback address of its own"));
  } else {
    findings.push_back(CheckAddress(configuration.unicast));
  }
}

}  // namespace tarn7::tool
