#include "tools/tarn7/doctor/stack_configuration.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kCheck = "configuration";

std::string Environment(const std::string& name) {
  const char* const value = std::getenv(name.c_str());
  return value == nullptr ? "" : value;
}

/// The variable that names the configuration; empty where none does.
std::string NamingVariable() {
  for (const std::string& name :
       {"VSOMEIP_CONFIGURATION_" + Environment("VSOMEIP_APPLICATION_NAME"), std::string("VSOMEIP_CONFIGURATION")}) {
    if (!Environment(name).empty()) {
      return name;
    }
  }
  return "";
}

/// The file itself, or the JSON files of a folder.
std::vector<std::string> FilesAt(const fs::path& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) {
    return fs::exists(path, error) ? std::vector<std::string>{path.string()} : std::vector<std::string>();
  }
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(path, error)) {
    if (entry.path().extension() == ".json") {
      files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Where vsomeip3 looks when nothing is named: a local configuration goes before that of the machine.
std::vector<std::string> StandardFiles() {
  for (const auto& [file, folder] : {std::pair("vsomeip.json", "vsomeip"), {"/etc/vsomeip.json", "/etc/vsomeip"}}) {
    std::vector<std::string> files = FilesAt(file);
    const std::vector<std::string> more = fs::is_directory(folder) ? FilesAt(folder) : std::vector<std::string>();
    files.insert(files.end(), more.begin(), more.end());
    if (!files.empty()) {
      return files;
    }
  }
  return {};
}

std::vector<std::string> FindFiles(Findings& findings) {
  const std::string variable = NamingVariable();
  const bool isEmbedded = GetBuildInfo().HasEmbeddedStack();
  if (variable.empty()) {
    auto files = isEmbedded ? std::vector<std::string>() : StandardFiles();
    if (files.empty()) {
      findings.push_back(Finding::Ok(kCheck, "none: everything works between the processes of this machine"));
    }
    return files;
  }
  auto files = FilesAt(Environment(variable));
  if (files.empty()) {
    findings.push_back(Finding::Problem(kCheck, Environment(variable) + ", which " + variable + " names, is not there",
                                        "name an existing file, or unset " + variable));
  } else if (isEmbedded && fs::is_directory(Environment(variable))) {
    findings.push_back(Finding::Problem(kCheck, Environment(variable) + " is a folder: the embedded stack reads a file",
                                        "have " + variable + " name one file"));
  }
  return files;
}

/// Numbers may be written as strings, decimal or with 0x.
std::uint16_t ReadPort(const Json& json) {
  std::size_t end = 0;
  const std::string text = json.is_string() ? json.get<std::string>() : json.dump();
  const bool isNumber = !text.empty() && text.find_first_not_of("0123456789abcdefABCDEFxX") == std::string::npos;
  const unsigned long number = isNumber && text.size() <= 10 ? std::stoul(text, &end, 0) : 0;
  if (number == 0 || number > 0xFFFF || end != text.size()) {
    throw std::invalid_argument("port " + text + " is no number from 1 to 65535");
  }
  return static_cast<std::uint16_t>(number);
}

/// Takes over what one file says.
class Reading {
 public:
  Reading(StackConfiguration& out, const Json& document) : out_(out), document_(document) {}

  void Run() {
    Require(document_.is_object(), "it must be an object");
    Text(document_, "unicast", out_.unicast);
    Text(document_, "network", out_.network);
    Discovery();
    Routing();
    const auto services = document_.find("services");
    if (services != document_.end()) {
      Require(services->is_array(), "\"services\" must be an array");
      for (const Json& service : *services) {
        Require(service.is_object(), "each of \"services\" must be an object");
        if (service.contains("unreliable")) {
          out_.service_ports.push_back(ReadPort(service["unreliable"]));
        }
      }
    }
  }

 private:
  static void Require(bool condition, const std::string& text) {
    if (!condition) {
      throw std::invalid_argument(text);
    }
  }

  static void Text(const Json& object, const char* key, std::string& out) {
    const auto found = object.find(key);
    if (found != object.end()) {
      Require(found->is_string(), '"' + std::string(key) + "\" must be a string");
      out = found->get<std::string>();
    }
  }

  void Discovery() {
    const auto discovery = document_.find("service-discovery");
    if (discovery == document_.end()) {
      return;
    }
    Require(discovery->is_object(), "\"service-discovery\" must be an object");
    out_.discovery =
        !discovery->contains("enable") || ((*discovery)["enable"] != "false" && (*discovery)["enable"] != false);
    Text(*discovery, "multicast", out_.group);
    if (discovery->contains("port")) {
      out_.discovery_port = ReadPort((*discovery)["port"]);
    }
  }

  /// The application's name, or an object that says more of it.
  void Routing() {
    const auto routing = document_.find("routing");
    if (routing == document_.end()) {
      return;
    }
    if (routing->is_object()) {
      const Json host = routing->value("host", Json::object());
      Require(host.is_object(), "\"routing.host\" must be an object");
      Text(host, "name", out_.routing_host);
    } else {
      Text(document_, "routing", out_.routing_host);
    }
  }

  StackConfiguration& out_;
  const Json& document_;
};

}  // namespace

StackConfiguration::StackConfiguration() {
  const bool isEmbedded = GetBuildInfo().HasEmbeddedStack();
  unicast = isEmbedded ? "" : "127.0.0.1";
  group = isEmbedded ? "224.244.224.245" : "224.224.224.0";
}

StackConfiguration ReadStackConfiguration(Findings& findings) {
  StackConfiguration configuration;
  for (const std::string& path : FindFiles(findings)) {
    try {
      const auto content = std::make_shared<const Json>(ParseJson(ReadText(path), "no JSON"));
      Reading(configuration, *content).Run();
      configuration.files.push_back({path, content});
      findings.push_back(Finding::Ok(kCheck, path));
    } catch (const ValueError& error) {
      findings.push_back(Finding::Problem(kCheck, path + ": " + error.what(), "correct the file"));
    } catch (const std::invalid_argument& error) {
      findings.push_back(Finding::Problem(kCheck, path + ": " + error.what(), "correct the file"));
    }
  }
  return configuration;
}

}  // namespace tarn7::tool
