#include "embedded_stack/configuration.h"

#include <cstdio>
#include <fstream>
#include <unistd.h>

#include <gtest/gtest.h>
#include <vsomeip/vsomeip.hpp>

namespace vsomeip_v3::embedded {
namespace {

using namespace std::chrono_literals;

TEST(ConfigurationTest, EveryKeyWithNumbersAsStringsOrNot) {
  const Configuration read = ParseConfiguration("file.json", R"({
    "unicast": "127.0.0.5",
    "logging": {"level": "info"},
    "applications": [{"name": "one", "id": "0x1277"}, {"name": "two", "id": 4}],
    "services": [{"service": "0x4711", "instance": "22", "unreliable": "30500"}],
    "service-discovery": {
      "enable": "true", "multicast": "224.225.226.233", "port": "30491",
      "initial_delay_min": "10", "initial_delay_max": "100", "repetitions_base_delay": 20, "repetitions_max": "2",
      "ttl": "5", "cyclic_offer_delay": "2000", "request_response_delay": "150"}})");
  EXPECT_EQ(read.unicast, 0x7F000005U);
  EXPECT_EQ(read.log_level, LogLevel::kInfo);
  EXPECT_EQ(read.client_ids, (std::map<std::string, client_t>{{"one", 0x1277}, {"two", 4}}));
  EXPECT_EQ(read.ports.at({0x4711, 22}), 30500);
  EXPECT_TRUE(read.discovery.enabled);
  EXPECT_EQ(read.discovery.multicast, 0xE0E1E2E9U);
  EXPECT_EQ(read.discovery.port, 30491);
  EXPECT_EQ(read.discovery.initial_delay_min, 10ms);
  EXPECT_EQ(read.discovery.initial_delay_max, 100ms);
  EXPECT_EQ(read.discovery.repetitions_base_delay, 20ms);
  EXPECT_EQ(read.discovery.repetitions_max, 2U);
  EXPECT_EQ(read.discovery.ttl, 5U);
  EXPECT_EQ(read.discovery.cyclic_offer_delay, 2000ms);
  EXPECT_EQ(read.discovery.request_response_delay, 150ms);
  EXPECT_TRUE(read.warnings.empty());
}

TEST(ConfigurationTest, UnknownKeysAreNamedWithTheirLine) {
  const Configuration read = ParseConfiguration("file.json", R"({
    "routing": "one",
    "tracing": {"enable": "true"},
    "service-discovery": {
      "ttl": 4,
      "protocol": "udp"}})");
  ASSERT_EQ(read.warnings.size(), 3U);
  EXPECT_EQ(read.warnings[0].find("file.json:2: \"routing\""), 0U) << read.warnings[0];
  EXPECT_EQ(read.warnings[1].find("file.json:3: \"tracing\""), 0U) << read.warnings[1];
  EXPECT_EQ(read.warnings[2].find("file.json:6: \"service-discovery.protocol\""), 0U) << read.warnings[2];
  EXPECT_EQ(read.discovery.ttl, 4U);
}

TEST(ConfigurationTest, ErrorsNameFileAndLine) {
  struct Case {
    const char* text;
    const char* start;
  };
  const Case cases[] = {
      {"", "f:1: no valid JSON"},
      {"{\n\"unicast\": \"127.0.0.5\",\n}", "f:3: no valid JSON"},
      {"[]", "f:1: the document must be an object"},
      {"{\n\"unicast\": \"127.0.0.256\"}", "f:2: \"unicast\" must be an IPv4 address"},
      {"{\"service-discovery\": {\n\"port\": \"70000\"}}", "f:2: \"service-discovery.port\" must be a number from 0"},
      {"{\"service-discovery\": {\n\"port\": \"12x\"}}", "f:2: \"service-discovery.port\" must be a number"},
      {"{\"service-discovery\": {\"port\": -1}}", "f:1: \"service-discovery.port\" must be a number"},
      {"{\"service-discovery\": {\"ttl\": \"99999999999999999999\"}}", "f:1: \"service-discovery.ttl\" must be"},
      {"{\"service-discovery\": {\"ttl\": 0}}", "f:1: \"service-discovery.ttl\" must not be 0"},
      {"{\"service-discovery\": {\"multicast\": \"10.0.0.1\"}}",
       "f:1: \"service-discovery.multicast\" must be a multi"},
      {"{\"service-discovery\": {\"enable\": \"maybe\"}}", "f:1: \"service-discovery.enable\" must be true or false"},
      {"{\"service-discovery\":\n {\"initial_delay_min\": 2}}",
       "f:2: \"service-discovery.initial_delay_max\" must not"},
      {"{\n\n\"services\": {}}", "f:3: \"services\" must be an array"},
      {"{\"services\": [{\"service\": 1}]}", "f:1: a service needs"},
      {"{\"applications\": [{\"id\": 1}]}", "f:1: an application needs"},
      {"{\"logging\": {\"level\": \"loud\"}}", "f:1: \"logging.level\" must be"},
  };
  for (const Case& test : cases) {
    try {
      ParseConfiguration("f", test.text);
      ADD_FAILURE() << "accepted: " << test.text;
    } catch (const ConfigurationError& error) {
      EXPECT_EQ(std::string(error.what()).find(test.start), 0U) << error.what();
    }
  }
  EXPECT_THROW(LoadConfiguration("/does/not/exist.json"), ConfigurationError);
}

TEST(ConfigurationTest, InitFailsOnABrokenFileAndSaysWhere) {
  const std::string file = testing::TempDir() + "embedded_stack_broken" + std::to_string(getpid()) + ".json";
  std::ofstream(file) << "{\n\"unicast\": 5\n}";
  testing::internal::CaptureStderr();
  EXPECT_FALSE(runtime::get()->create_application("broken", file)->init());
  const std::string output = testing::internal::GetCapturedStderr();
  EXPECT_NE(output.find(file + ":2: \"unicast\" must be a string"), std::string::npos) << output;
  std::remove(file.c_str());
}

TEST(ConfigurationTest, NamesAndClientIds) {
  const std::string file = testing::TempDir() + "embedded_stack_names" + std::to_string(getpid()) + ".json";
  std::ofstream(file) << R"({"applications": [{"name": "from_environment", "id": "0x2345"}]})";
  setenv("VSOMEIP_CONFIGURATION", file.c_str(), 1);
  setenv("VSOMEIP_APPLICATION_NAME", "from_environment", 1);
  const auto first = runtime::get()->create_application();
  EXPECT_EQ(first->get_name(), "from_environment");
  ASSERT_TRUE(first->init());
  EXPECT_EQ(first->get_client(), 0x2345);
  const auto second = runtime::get()->create_application();
  EXPECT_NE(second->get_name(), first->get_name());
  EXPECT_EQ(runtime::get()->get_application(first->get_name()), first);
  ASSERT_TRUE(second->init());
  EXPECT_NE(second->get_client(), first->get_client());
  unsetenv("VSOMEIP_CONFIGURATION");
  unsetenv("VSOMEIP_APPLICATION_NAME");
  std::remove(file.c_str());
}

}  // namespace
}  // namespace vsomeip_v3::embedded
