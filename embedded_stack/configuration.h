#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "embedded_stack/log.h"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3::embedded {

// How discovery behaves. The defaults suit processes on one machine: offers go out at once, and a provider that was
// killed is noticed within three seconds.
struct DiscoverySettings {
  bool enabled = true;
  std::uint32_t multicast = 0xE0F4E0F5;  // 224.244.224.245
  port_t port = 30490;
  std::chrono::milliseconds initial_delay_min{0};
  std::chrono::milliseconds initial_delay_max{0};
  std::chrono::milliseconds repetitions_base_delay{200};
  unsigned repetitions_max = 3;
  ttl_t ttl = 3;  // seconds, of offers and of subscriptions
  std::chrono::milliseconds cyclic_offer_delay{1000};
  std::chrono::milliseconds request_response_delay{0};  // before a find is answered
};

struct Configuration {
  std::optional<std::uint32_t> unicast;  // none: a loopback address of the application's own
  std::uint32_t netmask = 0xFFFFFF00;    // of the network that discovery is limited to; loopback is always one
  std::map<std::string, client_t> client_ids;
  std::map<std::pair<service_t, instance_t>, port_t> ports;
  DiscoverySettings discovery;
  LogLevel log_level = LogLevel::kWarning;
  std::vector<std::string> warnings;  // one per key that has no effect
};

// The message names file and line.
class ConfigurationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads `text` as the content of `file`. Throws ConfigurationError.
Configuration ParseConfiguration(const std::string& file, const std::string& text);

// Throws ConfigurationError if `file` cannot be read, too.
Configuration LoadConfiguration(const std::string& file);

}  // namespace vsomeip_v3::embedded
