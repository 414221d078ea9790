#include "embedded_stack/configuration.h"

#include <algorithm>
#include <arpa/inet.h>
#include <fstream>
#include <functional>
#include <iterator>

#include <nlohmann/json.hpp>

namespace vsomeip_v3::embedded {

namespace {

using Json = nlohmann::ordered_json;

// Walks the document and knows at which line it is, as far as that can be told from the keys on the way.
class Reader {
 public:
  Reader(const std::string& file, const std::string& text, Configuration& out)
      : file_(file), text_(text), configuration_(out) {}

  void Read() {
    Json document;
    try {
      document = Json::parse(text_);
    } catch (const Json::parse_error& error) {
      std::string reason = error.what();
      reason = reason.substr(std::min(reason.find(": "), reason.size() - 1) + 2);
      throw ConfigurationError(Where(error.byte == 0 ? 0 : error.byte - 1) + "no valid JSON: " + reason);
    }
    Members(
        document, "",
        {{"unicast", [this](const Json& value) { configuration_.unicast = Address(value); }},
         {"netmask", [this](const Json& value) { Netmask(value); }},
         {"applications", [this](const Json& value) { Each(value, [this](const Json& item) { Application(item); }); }},
         {"services", [this](const Json& value) { Each(value, [this](const Json& item) { Service(item); }); }},
         {"service-discovery", [this](const Json& value) { Discovery(value); }},
         {"logging", [this](const Json& value) {
            Members(value, "logging", {{"level", [this](const Json& level) { Level(level); }}});
          }}});
  }

 private:
  using Action = std::function<void(const Json&)>;

  std::string Where(std::size_t position) const {
    const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(position, text_.size()));
    return file_ + ":" + std::to_string(1 + std::count(text_.begin(), end, '\n')) + ": ";
  }

  [[noreturn]] void Fail(const std::string& reason) const { throw ConfigurationError(Where(position_) + reason); }

  // Calls the action of each member of `object`, and notes a warning for members that have none.
  void Members(const Json& object, const std::string& path, const std::map<std::string, Action>& actions) {
    if (!object.is_object()) Fail((path.empty() ? "the document" : "\"" + path + "\"") + " must be an object");
    for (const auto& [key, value] : object.items()) {
      const std::string full = path.empty() ? key : path + "." + key;
      const std::size_t found = text_.find("\"" + key + "\"", position_);
      if (found != std::string::npos) position_ = found;
      key_ = full;
      const auto action = actions.find(key);
      if (action == actions.end()) {
        configuration_.warnings.push_back(Where(position_) + "\"" + full + "\" is unknown here and has no effect");
        // Its content is not looked at, but the search for the next key must not stop inside it.
        if (value.is_structured()) position_ = std::min(text_.size(), position_ + key.size() + 2);
      } else {
        action->second(value);
      }
    }
  }

  void Each(const Json& array, const Action& action) const {
    if (!array.is_array()) Fail("\"" + key_ + "\" must be an array");
    for (const Json& item : array) action(item);
  }

  // Numbers may be written as strings, decimal or with 0x, as vsomeip's files have them.
  std::uint32_t Number(const Json& value, std::uint32_t max) const {
    std::uint64_t number = 0;
    bool valid = value.is_number_unsigned();
    if (valid) {
      number = value.get<std::uint64_t>();
    } else if (value.is_string()) {
      const auto& text = value.get_ref<const std::string&>();
      const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
      const std::string digits = hex ? text.substr(2) : text;
      const char* const allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
      valid = !digits.empty() && digits.size() <= 10 && digits.find_first_not_of(allowed) == std::string::npos;
      if (valid) number = std::stoull(digits, nullptr, hex ? 16 : 10);
    }
    if (!valid || number > max) Fail("\"" + key_ + "\" must be a number from 0 to " + std::to_string(max));
    return static_cast<std::uint32_t>(number);
  }

  std::uint16_t Number16(const Json& value) const { return static_cast<std::uint16_t>(Number(value, 0xFFFF)); }
  std::chrono::milliseconds Milliseconds(const Json& value) const {
    return std::chrono::milliseconds(Number(value, 24 * 60 * 60 * 1000));
  }

  std::string Text(const Json& value) const {
    if (!value.is_string()) Fail("\"" + key_ + "\" must be a string");
    return value.get<std::string>();
  }

  std::uint32_t Address(const Json& value) const {
    in_addr address{};
    if (inet_pton(AF_INET, Text(value).c_str(), &address) != 1) Fail("\"" + key_ + "\" must be an IPv4 address");
    return ntohl(address.s_addr);
  }

  void Netmask(const Json& value) {
    const std::uint32_t mask = Address(value);
    if ((~mask & (~mask + 1)) != 0) Fail("\"netmask\" must be ones before zeros");
    configuration_.netmask = mask;
  }

  bool Flag(const Json& value) const {
    if (value.is_boolean()) return value.get<bool>();
    if (value == "true" || value == "false") return value == "true";
    Fail("\"" + key_ + "\" must be true or false");
  }

  void Application(const Json& item) {
    std::string name;
    client_t id = 0;
    Members(item, "applications",
            {{"name", [&](const Json& value) { name = Text(value); }},
             {"id", [&](const Json& value) { id = Number16(value); }}});
    if (name.empty()) Fail("an application needs a \"name\"");
    if (id != 0) configuration_.client_ids[name] = id;
  }

  void Service(const Json& item) {
    std::optional<service_t> service;
    std::optional<instance_t> instance;
    port_t port = 0;
    Members(item, "services",
            {{"service", [&](const Json& value) { service = Number16(value); }},
             {"instance", [&](const Json& value) { instance = Number16(value); }},
             {"unreliable", [&](const Json& value) { port = Number16(value); }}});
    if (!service || !instance) Fail(R"(a service needs "service" and "instance")");
    if (port != 0) configuration_.ports[{*service, *instance}] = port;
  }

  void Discovery(const Json& object) {
    DiscoverySettings& out = configuration_.discovery;
    Members(object, "service-discovery",
            {{"enable", [&](const Json& value) { out.enabled = Flag(value); }},
             {"multicast", [&](const Json& value) { out.multicast = Address(value); }},
             {"port", [&](const Json& value) { out.port = Number16(value); }},
             {"initial_delay_min", [&](const Json& value) { out.initial_delay_min = Milliseconds(value); }},
             {"initial_delay_max", [&](const Json& value) { out.initial_delay_max = Milliseconds(value); }},
             {"repetitions_base_delay", [&](const Json& value) { out.repetitions_base_delay = Milliseconds(value); }},
             {"repetitions_max", [&](const Json& value) { out.repetitions_max = Number(value, 10); }},
             {"ttl", [&](const Json& value) { out.ttl = Number(value, 0xFFFFFF); }},
             {"cyclic_offer_delay", [&](const Json& value) { out.cyclic_offer_delay = Milliseconds(value); }},
             {"request_response_delay", [&](const Json& value) { out.request_response_delay = Milliseconds(value); }}});
    if ((out.multicast >> 28U) != 0xE) Fail("\"service-discovery.multicast\" must be a multicast address");
    if (out.port == 0) Fail("\"service-discovery.port\" must not be 0");
    if (out.ttl == 0) Fail("\"service-discovery.ttl\" must not be 0");
    if (out.cyclic_offer_delay.count() == 0) Fail("\"service-discovery.cyclic_offer_delay\" must not be 0");
    if (out.initial_delay_max < out.initial_delay_min) {
      Fail("\"service-discovery.initial_delay_max\" must not be below initial_delay_min");
    }
  }

  void Level(const Json& value) {
    static const std::map<std::string, LogLevel> kLevels = {
        {"none", LogLevel::kNone},       {"fatal", LogLevel::kError}, {"error", LogLevel::kError},
        {"warning", LogLevel::kWarning}, {"info", LogLevel::kInfo},   {"debug", LogLevel::kDebug},
        {"verbose", LogLevel::kDebug},   {"trace", LogLevel::kDebug}};
    const auto level = kLevels.find(Text(value));
    if (level == kLevels.end()) Fail("\"logging.level\" must be none, fatal, error, warning, info, debug or verbose");
    configuration_.log_level = level->second;
  }

  const std::string& file_;
  const std::string& text_;
  Configuration& configuration_;
  std::size_t position_ = 0;  // of the key that was read last
  std::string key_;           // its full name
};

}  // namespace

Configuration ParseConfiguration(const std::string& file, const std::string& text) {
  Configuration configuration;
  Reader(file, text, configuration).Read();
  return configuration;
}

Configuration LoadConfiguration(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream.is_open() || stream.bad()) throw ConfigurationError(file + ": cannot be read");
  return ParseConfiguration(file, text);
}

}  // namespace vsomeip_v3::embedded
