#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/doctor/stack_configuration.h"
#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

namespace {

struct Key {
  const char* path;
  bool embedded;  // whether it has an effect in the embedded stack
};

/// The keys that are checked, the elements of an array taken for the array. Below a key that has none below it here,
/// anything goes.
constexpr Key kKeys[] = {
    {"acceptances", false},
    {"applications", true},
    {"applications.debounce", false},
    {"applications.has_session_handling", false},
    {"applications.id", true},
    {"applications.io_thread_nice", false},
    {"applications.max_dispatch_time", false},
    {"applications.max_dispatchers", false},
    {"applications.name", true},
    {"applications.plugins", false},
    {"applications.request_debounce_time", false},
    {"applications.status_log_interval", false},
    {"applications.threads", false},
    {"applications.version_log_interval", false},
    {"buffer-shrink-threshold", false},
    {"clients", false},
    {"container_policy_extensions", false},
    {"debounce", false},
    {"device", false},
    {"diagnosis", false},
    {"diagnosis_mask", false},
    {"dispatching", false},
    {"e2e", false},
    {"endpoint-queue-limit-external", false},
    {"endpoint-queue-limit-local", false},
    {"endpoint-queue-limits", false},
    {"file-permissions", false},
    {"internal_services", false},
    {"logging", true},
    {"logging.console", false},
    {"logging.dlt", false},
    {"logging.file", false},
    {"logging.level", true},
    {"logging.memory_log_interval", false},
    {"logging.statistics", false},
    {"logging.status_log_interval", false},
    {"logging.version", false},
    {"max-payload-size-local", false},
    {"max-payload-size-reliable", false},
    {"max-payload-size-unreliable", false},
    {"netmask", true},
    {"network", false},
    {"network-options", false},
    {"partitions", false},
    {"payload-sizes", false},
    {"request_debounce_time", false},
    {"routing", false},
    {"routing-credentials", false},
    {"routing.guests", false},
    {"routing.host", false},
    {"secure-services", false},
    {"security", false},
    {"security-update-whitelist", false},
    {"service-discovery", true},
    {"service-discovery.cyclic_offer_delay", true},
    {"service-discovery.enable", true},
    {"service-discovery.find_debounce_time", false},
    {"service-discovery.find_initial_debounce_reps", false},
    {"service-discovery.find_initial_debounce_time", false},
    {"service-discovery.initial_delay_max", true},
    {"service-discovery.initial_delay_min", true},
    {"service-discovery.initial_state", false},
    {"service-discovery.max_remote_subscribers", false},
    {"service-discovery.multicast", true},
    {"service-discovery.offer_debounce_time", false},
    {"service-discovery.offer_watchdog_time", false},
    {"service-discovery.port", true},
    {"service-discovery.protocol", false},
    {"service-discovery.repetitions_base_delay", true},
    {"service-discovery.repetitions_max", true},
    {"service-discovery.request_response_delay", true},
    {"service-discovery.stop_offer_watchdog_time", false},
    {"service-discovery.ttl", true},
    {"service-discovery.ttl_factor_offers", false},
    {"service-discovery.ttl_factor_subscriptions", false},
    {"service-discovery.wait_route_netlink_notification", false},
    {"services", true},
    {"services.debounce-times", false},
    {"services.eventgroups", false},
    {"services.events", false},
    {"services.instance", true},
    {"services.protocol", false},
    {"services.reliable", false},
    {"services.service", true},
    {"services.someip-tp", false},
    {"services.unicast", false},
    {"services.unreliable", true},
    {"shutdown_timeout", false},
    {"supports_selective_broadcasts", false},
    {"suppress_missing_event_logs", false},
    {"tcp-connect-time-max", false},
    {"tcp-restart-aborts-max", false},
    {"tracing", false},
    {"udp-receive-buffer-size", false},
    {"uds-preferred", false},
    {"unicast", true},
};

/// Those that may stand where `prefix` ("", "logging.") leads to.
std::vector<std::string> KeysBelow(const std::string& prefix) {
  std::vector<std::string> names;
  for (const Key& key : kKeys) {
    const std::string path = key.path;
    if (path.compare(0, prefix.size(), prefix) == 0 && path.find('.', prefix.size()) == std::string::npos) {
      names.push_back(path.substr(prefix.size()));
    }
  }
  return names;
}

class KeyCheck {
 public:
  KeyCheck(const StackConfiguration::File& file, Findings& findings) : file_(file), findings_(findings) {}

  void Run() {
    Walk(*file_.content, "");
    if (!without_effect_.empty()) {
      std::string list;
      for (const std::string& path : without_effect_) {
        list += (list.empty() ? "" : ", ") + path;
      }
      findings_.push_back(Finding::Ok("keys", file_.path + ": without effect in the embedded stack: " + list));
    }
  }

 private:
  void Walk(const Json& json, const std::string& prefix) {
    const std::vector<std::string> names = KeysBelow(prefix);
    if (names.empty()) {
      return;
    }
    if (json.is_array()) {
      for (const Json& element : json) {
        Walk(element, prefix);
      }
    } else if (json.is_object()) {
      for (const auto& item : json.items()) {
        Check(prefix, item.key(), item.value(), names);
      }
    }
  }

  void Check(const std::string& prefix, const std::string& name, const Json& value,
             const std::vector<std::string>& names) {
    const std::string path = prefix + name;
    const auto* const key = std::find_if(std::begin(kKeys), std::end(kKeys),
                                         [&path](const Key& candidate) { return candidate.path == path; });
    if (key == std::end(kKeys)) {
      findings_.push_back(Finding::Warning("keys", file_.path + ": \"" + path + "\" is unknown and has no effect",
                                           "take it out, or write \"" + Nearest(name, names) + "\" if that is meant"));
    } else if (!key->embedded && GetBuildInfo().HasEmbeddedStack()) {
      without_effect_.insert(path);
    } else {
      Walk(value, path + '.');
    }
  }

  const StackConfiguration::File& file_;
  Findings& findings_;
  std::set<std::string> without_effect_;
};

}  // namespace

void CheckConfigurationKeys(const StackConfiguration& configuration, Findings& findings) {
  for (const StackConfiguration::File& file : configuration.files) {
    KeyCheck(file, findings).Run();
  }
}

}  // namespace tarn7::tool
