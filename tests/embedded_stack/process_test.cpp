// A client here, a provider in another process.
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/embedded_stack/test_node.h"

namespace embedded_stack_test {
namespace {

// The provider program, for as long as the object lives.
class Process {
 public:
  Process(int byte, std::size_t size, const std::string& configuration = "") {
    const std::string instance = std::to_string(kInstance);
    const std::string byte_text = std::to_string(byte);
    const std::string size_text = std::to_string(size);
    pid_ = fork();
    if (pid_ != 0) return;
    if (!configuration.empty()) setenv("VSOMEIP_CONFIGURATION", configuration.c_str(), 1);
    execl(FIELD_PROVIDER, "field_provider", instance.c_str(), byte_text.c_str(), size_text.c_str(), nullptr);
    std::perror("cannot start the provider");
    _exit(127);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() { End(SIGKILL); }

  int End(int signal) {
    int status = -1;
    if (pid_ > 0) {
      kill(pid_, signal);
      waitpid(pid_, &status, 0);
    }
    pid_ = -1;
    return status;
  }

 private:
  pid_t pid_ = -1;
};

class ProcessTest : public testing::TestWithParam<std::size_t> {};

TEST_P(ProcessTest, GetsAndFollows) {
  const std::size_t size = GetParam();
  Process provider(0x5A, size);
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  EXPECT_TRUE(client.Call(kGet).bytes == Bytes(size, 0x5A));
  client.Subscribe();
  ASSERT_TRUE(client.status.WaitForLast(0));
  ASSERT_TRUE(client.values.WaitForLast(Bytes(size, 0x5A)));  // the value from before the subscription
  const Bytes next(size, 0xC3);
  EXPECT_EQ(client.Call(kSet, next).code, vsomeip::return_code_e::E_OK);
  EXPECT_TRUE(client.values.WaitForLast(next));
}
// One datagram; exactly one, and one byte more; whole segments; 1 MiB.
INSTANTIATE_TEST_SUITE_P(, ProcessTest, testing::Values(1, 1400, 1401, 2784, 1U << 20U));

TEST(RestartTest, KilledProviderIsNoticedAndTheSubscriptionRestored) {
  auto provider = std::make_unique<Process>(1, 3);
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForLast({1, 1, 1}));
  const auto killed = std::chrono::steady_clock::now();
  provider->End(SIGKILL);
  ASSERT_TRUE(client.availability.WaitForLast(false));
  EXPECT_LT(std::chrono::steady_clock::now() - killed, 3500ms);
  EXPECT_FALSE(client->is_available(kService, kInstance));

  provider = std::make_unique<Process>(2, 3);
  ASSERT_TRUE(client.values.WaitForLast({2, 2, 2}));
  EXPECT_EQ(client.availability.Items(), (std::vector<bool>{false, true, false, true}));
  EXPECT_EQ(client.status.Items(), (std::vector<std::uint16_t>{0, 0}));
  EXPECT_EQ(client.Call(kGet).bytes, (Bytes{2, 2, 2}));
}

// With and without an address that is the same again after the restart.
TEST(RestartTest, QuickRestartIsNoticedAtOnce) {
  const std::string file = testing::TempDir() + "embedded_stack_restart" + std::to_string(getpid()) + ".json";
  const std::string address = "127.99." + std::to_string(kInstance >> 8U) + "." + std::to_string(kInstance & 0xFFU);
  std::ofstream(file) << R"({"unicast": ")" << address << R"(", "service-discovery": {"ttl": "3"}})";
  for (const std::string& configuration : {std::string(), file}) {
    auto provider = std::make_unique<Process>(1, 3, configuration);
    Client client;
    client.Subscribe();
    ASSERT_TRUE(client.values.WaitForLast({1, 1, 1}));
    const auto killed = std::chrono::steady_clock::now();
    provider->End(SIGKILL);
    provider = std::make_unique<Process>(2, 3, configuration);
    ASSERT_TRUE(client.values.WaitForLast({2, 2, 2}));
    EXPECT_LT(std::chrono::steady_clock::now() - killed, 2s) << configuration;
    EXPECT_EQ(client.availability.Items(), (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(client.Call(kGet).bytes, (Bytes{2, 2, 2}));
  }
  std::remove(file.c_str());
}

TEST(RestartTest, ProviderThatStopsSaysSo) {
  Process provider(1, 3);
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  EXPECT_EQ(provider.End(SIGTERM), 0);
  EXPECT_TRUE(client.availability.WaitForLast(false, 1s));
}

TEST(RestartTest, ClientComesBack) {
  Process provider(1, 3);
  for (int i = 0; i < 3; ++i) {
    Client client;
    client.Subscribe();
    EXPECT_TRUE(client.values.WaitForLast({1, 1, 1}));
    EXPECT_EQ(client.Call(kGet).bytes, (Bytes{1, 1, 1}));
  }
}

}  // namespace
}  // namespace embedded_stack_test
