#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/tarn7/doctor/finding.h"
#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// What the files that the SOME/IP stack reads say, as far as the checks need it; otherwise the stack's defaults.
struct StackConfiguration {
  struct File {
    std::string path;
    std::shared_ptr<const Json> content;
  };

  StackConfiguration();

  std::vector<File> files;  ///< those that can be read
  std::string unicast;      ///< empty: a loopback address of each application's own
  bool discovery = true;
  std::string group;
  std::uint16_t discovery_port = 30490;
  std::vector<std::uint16_t> service_ports;  ///< UDP ports where services are to be offered
  std::string network = "vsomeip";           ///< begins the names of vsomeip3's sockets
  std::string routing_host;                  ///< the application that hosts vsomeip3's routing; empty: the first one
};

/// Reads the files that the environment names, or else those of the stack's standard places. Adds to `findings` which
/// they are, and what is wrong with them.
StackConfiguration ReadStackConfiguration(Findings& findings);

/// Adds the keys that mean nothing to the stack.
void CheckConfigurationKeys(const StackConfiguration& configuration, Findings& findings);

}  // namespace tarn7::tool
