#include <set>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/doctor/port_holders.h"
#include "tools/tarn7/doctor/udp_socket.h"

namespace tarn7::tool {

namespace {

constexpr std::uint16_t kEmbeddedPort = 30509;  // where each application with the embedded stack receives

bool IsTaken(const std::string& address, std::uint16_t port, bool shared) {
  try {
    boost::asio::io_context context;
    BindUdp(context, address, port, shared);
  } catch (const boost::system::system_error& error) {
    return error.code() == boost::asio::error::address_in_use;  // other errors are of the address, not of the port
  }
  return false;
}

Finding CheckDiscoveryPort(const StackConfiguration& configuration) {
  const std::string name = "discovery port " + std::to_string(configuration.discovery_port);
  const std::string holders = UdpPortHolders(configuration.discovery_port);
  const bool taken =
      IsTaken(configuration.group, configuration.discovery_port, true) ||
      (!configuration.unicast.empty() && IsTaken(configuration.unicast, configuration.discovery_port, true));
  if (taken) {
    return Finding::Problem("ports", name + " is taken by a program that does not share it; it is held by " + holders,
                            "end that program, or configure another \"service-discovery.port\" on all nodes");
  }
  return Finding::Ok("ports", name + (holders.empty() ? " is free" : " is shared with " + holders));
}

Finding CheckServicePort(const StackConfiguration& configuration, std::uint16_t port) {
  const std::string name = configuration.unicast + ':' + std::to_string(port);
  if (!IsTaken(configuration.unicast, port, false)) {
    return Finding::Ok("ports", name + " is free");
  }
  const std::string text = name + " is taken by " + UdpPortHolders(port, configuration.unicast);
  if (GetBuildInfo().HasEmbeddedStack()) {
    return Finding::Problem("ports", text,
                            "give each application a configuration with a \"unicast\" of its own, or none at all");
  }
  return Finding::Warning("ports", text, "no other program but the routing host may offer there");
}

}  // namespace

void CheckPorts(const StackConfiguration& configuration, Findings& findings) {
  if (configuration.discovery) {
    findings.push_back(CheckDiscoveryPort(configuration));
  }
  if (configuration.unicast.empty()) {
    return;
  }
  std::set<std::uint16_t> ports(configuration.service_ports.begin(), configuration.service_ports.end());
  if (GetBuildInfo().HasEmbeddedStack()) {
    ports.insert(kEmbeddedPort);
  }
  for (const std::uint16_t port : ports) {
    findings.push_back(CheckServicePort(configuration, port));
  }
}

}  // namespace tarn7::tool
