// Applications in one process: each is a node of its own, so all of this goes over the network.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <future>
#include <poll.h>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/embedded_stack/test_node.h"
#include "tests/support/child_process.h"

namespace embedded_stack_test {
namespace {

TEST(NodeTest, ProviderAndClientInOneApplication) {
  Client app;
  Record<Bytes> responses;
  app->register_message_handler(kService, kInstance, kGet, [&](const std::shared_ptr<vsomeip::message>& message) {
    if (message->get_message_type() != vsomeip::message_type_e::MT_REQUEST) return responses.Add(BytesOf(*message));
    const auto response = vsomeip::runtime::get()->create_response(message);
    response->set_payload(MakePayload({4, 2}));
    app->send(response);
  });
  app.Subscribe();
  app->offer_event(kService, kInstance, kField, {kGroup}, vsomeip::event_type_e::ET_FIELD);
  app->offer_service(kService, kInstance, kMajor);
  app->notify(kService, kInstance, kField, MakePayload({9}));
  ASSERT_TRUE(app.availability.WaitForLast(true));
  EXPECT_TRUE(app.status.WaitForLast(0));
  EXPECT_TRUE(app.values.WaitForLast({9}));
  app.Send(kGet);
  EXPECT_TRUE(responses.WaitForLast({4, 2}));
  app->stop_offer_service(kService, kInstance);
  EXPECT_TRUE(app.availability.WaitForLast(false));
  EXPECT_FALSE(app->is_available(kService, kInstance));
  app.Stop();  // before what its handler uses is gone
}

TEST(NodeTest, InstancesOfOneServiceInOneApplicationAreToldApart) {
  Provider provider({1});
  provider.Offer(kSecondInstance, {2});
  Client first;
  Client second(kSecondInstance);
  for (Client* client : {&first, &second}) ASSERT_TRUE(client->availability.WaitForLast(true));
  EXPECT_EQ(first.Call(kGet).bytes, Bytes{1});
  EXPECT_EQ(second.Call(kGet).bytes, Bytes{2});
  second.Subscribe();
  EXPECT_TRUE(second.values.WaitForLast({2}));
}

// Whoever is asked to send what no message can carry is told.
TEST(NodeTest, WhatIsAboveTheLimitIsRefusedAloud) {
  constexpr std::size_t kLimit = 16U << 20U;
  Provider provider({1});
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForLast({1}));
  EXPECT_THROW(provider.Notify(Bytes(kLimit + 1)), std::length_error);
  EXPECT_THROW(client.Send(kReverse, Bytes(kLimit + 1)), std::length_error);
  EXPECT_EQ(client.Call(kGet).bytes, Bytes{1});
  provider.Notify(Bytes(kLimit, 7));
  EXPECT_TRUE(client.values.WaitForLast(Bytes(kLimit, 7), 60s));
}

// Reads what the process writes to its standard error, until a text has come so often or time is up.
class ErrorOutput {
 public:
  ErrorOutput() : former_(dup(STDERR_FILENO)) {
    if (pipe(pipe_) == 0) dup2(pipe_[1], STDERR_FILENO);
  }
  ~ErrorOutput() {
    dup2(former_, STDERR_FILENO);
    for (const int descriptor : {former_, pipe_[0], pipe_[1]}) close(descriptor);
  }
  ErrorOutput(const ErrorOutput&) = delete;
  ErrorOutput& operator=(const ErrorOutput&) = delete;

  std::size_t WaitForCount(const std::string& text, std::size_t wanted) {
    pollfd readable{pipe_[0], POLLIN, 0};
    std::size_t count = 0;
    while (count < wanted && poll(&readable, 1, 10000) == 1) {
      char buffer[4096];
      output.append(buffer, static_cast<std::size_t>(std::max(read(pipe_[0], buffer, sizeof(buffer)), ssize_t{0})));
      count = 0;
      for (std::size_t at = 0; (at = output.find(text, at)) != std::string::npos; ++at) ++count;
    }
    return count;
  }

  std::string output;

 private:
  const int former_;
  int pipe_[2] = {-1, -1};
};

TEST(NodeTest, TwoProvidersOfOneInstanceAreBothWarned) {
  ErrorOutput error;
  Provider first({1});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  Provider second({2});
  EXPECT_EQ(error.WaitForCount("as well as by this process", 2), 2U) << error.output;
  ASSERT_TRUE(client.availability.WaitForCount(3)) << "the newcomer takes over";
}

TEST(NodeTest, ReleasedServiceIsHeardOfAgainWhenItIsRequestedAgain) {
  Provider provider({1});
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForCount(1));
  client->release_service(kService, kInstance);
  EXPECT_FALSE(client->is_available(kService, kInstance));
  client->request_service(kService, kInstance);
  ASSERT_TRUE(client.availability.WaitForCount(3));
  EXPECT_EQ(client.availability.Items(), (std::vector<bool>{false, true, true}));
  client.Subscribe();
  EXPECT_TRUE(client.status.WaitForCount(2));
  EXPECT_TRUE(client.values.WaitForCount(2));
}

// A handler that owns something whose end calls back into the application.
TEST(NodeTest, HandlerMayOwnWhatUnregistersAnother) {
  Node app("owner");
  std::shared_ptr<int> owned(new int, [&app](const int* number) {
    app->unregister_message_handler(kService, kInstance, kSet);
    delete number;
  });
  app->register_message_handler(kService, kInstance, kGet, [owned](const auto&) {});
  const std::weak_ptr<int> end = owned;
  owned.reset();
  app->unregister_message_handler(kService, kInstance, kGet);
  EXPECT_TRUE(end.expired());
}

TEST(NodeTest, RequestIdsCountUpAndErrorsComeBackWithThem) {
  Provider provider({1});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  const vsomeip::request_t first = client.Send(kGet);
  EXPECT_EQ(first >> 16U, client->get_client());
  const Client::Reply error = client.Call(kGet, {}, kMajor + 1);
  EXPECT_EQ(error.request, first + 1);
  EXPECT_EQ(error.code, vsomeip::return_code_e::E_WRONG_INTERFACE_VERSION);
}

TEST(NodeTest, SubscriptionToAnUnknownEventgroupIsRejectedUntilItIsThere) {
  Node provider("late");
  provider->offer_service(kService, kInstance, kMajor);
  provider.Start();
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.status.WaitForLast(7));
  provider->offer_event(kService, kInstance, kField, {kGroup}, vsomeip::event_type_e::ET_FIELD);
  EXPECT_TRUE(client.status.WaitForLast(0));
}

TEST(NodeTest, FieldSendsChangesOnlyUnlessForced) {
  Provider provider({1});
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForCount(1));
  provider.Notify({1});  // unchanged
  provider.Notify({2});
  provider->notify(kService, kInstance, kField, MakePayload({2}), true);
  provider.Notify({3});
  ASSERT_TRUE(client.values.WaitForLast({3}));
  EXPECT_EQ(client.values.Items(), (std::vector<Bytes>{{1}, {2}, {2}, {3}}));
}

TEST(NodeTest, SecondEventOfAnEventgroupGetsItsValueToo) {
  constexpr vsomeip::event_t kOther = kField + 1;
  Provider provider({1});
  provider->offer_event(kService, kInstance, kOther, {kGroup}, vsomeip::event_type_e::ET_FIELD);
  provider->notify(kService, kInstance, kOther, MakePayload({5}));
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForLast({1}));
  Record<std::uint16_t> status;
  client->register_subscription_status_handler(kService, kInstance, kGroup, kOther,
                                               [&](auto, auto, auto, auto, std::uint16_t code) { status.Add(code); });
  client->request_event(kService, kInstance, kOther, {kGroup}, vsomeip::event_type_e::ET_FIELD);
  client->subscribe(kService, kInstance, kGroup, kMajor, kOther);
  EXPECT_TRUE(client.values.WaitForLast({5}));
  EXPECT_TRUE(status.WaitForLast(0));

  client->unsubscribe(kService, kInstance, kGroup, kOther);
  provider->notify(kService, kInstance, kOther, MakePayload({6}));
  provider.Notify({2});
  EXPECT_TRUE(client.values.WaitForLast({2}));
  for (const Bytes& value : client.values.Items()) EXPECT_NE(value, Bytes{6});
}

TEST(NodeTest, CyclicEventRepeatsItsValue) {
  Node provider("cyclic");
  provider->offer_event(kService, kInstance, kField, {kGroup}, vsomeip::event_type_e::ET_EVENT, 5ms, false, false);
  provider->offer_service(kService, kInstance, kMajor);
  provider.Start();
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.status.WaitForLast(0));
  provider->notify(kService, kInstance, kField, MakePayload({7}));
  EXPECT_TRUE(client.values.WaitForCount(3));
}

TEST(NodeTest, TenClientsAtOneProvider) {
  Provider provider({1});
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < 10; ++i) {
    clients.push_back(std::make_unique<Client>());
    clients.back()->Subscribe();
  }
  for (auto& client : clients) ASSERT_TRUE(client->values.WaitForLast({1}));
  provider.Notify(Bytes(20000, 8));
  for (auto& client : clients) EXPECT_TRUE(client->values.WaitForLast(Bytes(20000, 8)));
  for (std::size_t i = 0; i < clients.size(); ++i) {
    const auto byte = static_cast<vsomeip::byte_t>(i);
    EXPECT_EQ(clients[i]->Call(kReverse, {byte, 100}).bytes, (Bytes{100, byte}));
  }
}

TEST(NodeTest, BlockedHandlerStopsNeitherDiscoveryNorOtherHandlers) {
  Provider provider({1});
  std::promise<void> entered;
  std::promise<void> release;
  provider->register_message_handler(kService, kInstance, 0x0050,
                                     [&entered, released = release.get_future().share()](const auto&) {
                                       entered.set_value();
                                       released.wait();
                                     });
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  client.Send(0x0050);
  ASSERT_EQ(entered.get_future().wait_for(10s), std::future_status::ready);

  Client newcomer;  // is found, subscribed and sent the value by the I/O thread, and served by another handler thread
  newcomer.Subscribe();
  EXPECT_TRUE(newcomer.values.WaitForLast({1}));
  EXPECT_EQ(newcomer.Call(kGet).bytes, Bytes{1});

  const auto begin = std::chrono::steady_clock::now();
  provider->stop();  // leaves the handler behind
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
  EXPECT_TRUE(client.availability.WaitForLast(false, 1s));
  EXPECT_FALSE(provider->is_available(kService, kInstance));
  release.set_value();
}

TEST(NodeTest, StopWaitsForARunningHandlerAndForgetsTheRest) {
  auto client = std::make_unique<Client>();
  Provider provider({1});
  ASSERT_TRUE(client->availability.WaitForLast(true));
  std::promise<void> entered;
  std::atomic<int> calls{0};
  std::atomic<bool> stopped{false};
  std::atomic<bool> called_after_stop{false};
  (*client)->register_message_handler(kService, kInstance, kReverse, [&](const auto&) {
    if (stopped) called_after_stop = true;
    if (++calls == 1) entered.set_value();
  });
  for (int i = 0; i < 200; ++i) client->Send(kReverse, {1});
  ASSERT_EQ(entered.get_future().wait_for(10s), std::future_status::ready);
  const auto begin = std::chrono::steady_clock::now();
  (*client)->stop();
  stopped = true;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
  for (int i = 0; i < 50; ++i) provider.Notify({static_cast<vsomeip::byte_t>(i)});
  client.reset();
  EXPECT_FALSE(called_after_stop);
}

TEST(NodeTest, StopFromAHandlerAndStopBeforeStart) {
  const auto runtime = vsomeip::runtime::get();
  const auto app = runtime->create_application("stopper");
  ASSERT_TRUE(app->init());
  app->stop();
  app->start();  // returns at once

  ASSERT_TRUE(app->init());
  app->register_state_handler([&app](vsomeip::state_type_e) { app->stop(); });
  app->start();  // returns because the handler stops it
  SUCCEED();
}

TEST(NodeTest, PayloadsUpToTheLimitMakeTheRoundTrip) {
  Provider provider({1});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  // Exactly one datagram, and one byte more; whole segments; the largest.
  for (const std::size_t size : {1U, 1400U, 1401U, 2784U, 1U << 20U, 16U << 20U}) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<vsomeip::byte_t>(i * 31 >> 8U);
    EXPECT_TRUE(client.Call(kReverse, bytes).bytes == Bytes(bytes.rbegin(), bytes.rend())) << size;
  }
}

// With and without an address that is the same again after the restart.
TEST(NodeTest, QuickRestartIsNoticedAtOnceAndTheSubscriptionRestored) {
  const std::string file = testing::TempDir() + "embedded_stack_restart" + std::to_string(getpid()) + ".json";
  const std::string address = "127.99." + std::to_string(kInstance >> 8U) + "." + std::to_string(kInstance & 0xFFU);
  std::ofstream(file) << R"({"unicast": ")" << address << R"(", "service-discovery": {"ttl": "3"}})";
  const auto start = [](const char* byte, const std::string& configuration) {
    if (!configuration.empty()) setenv("VSOMEIP_CONFIGURATION", configuration.c_str(), 1);
    const std::vector<std::string> arguments{std::to_string(kInstance), byte, "3"};
    auto provider = std::make_unique<support::ChildProcess>(FIELD_PROVIDER, arguments);
    unsetenv("VSOMEIP_CONFIGURATION");  // the client's address is another one
    return provider;
  };
  for (const std::string& configuration : {std::string(), file}) {
    auto provider = start("1", configuration);
    Client client;
    client.Subscribe();
    ASSERT_TRUE(client.values.WaitForLast({1, 1, 1}));
    const auto killed = std::chrono::steady_clock::now();
    provider->Kill();
    provider = start("2", configuration);
    ASSERT_TRUE(client.values.WaitForLast({2, 2, 2}));
    EXPECT_LT(std::chrono::steady_clock::now() - killed, 2s) << configuration;
    EXPECT_EQ(client.availability.Items(), (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(client.status.Items(), (std::vector<std::uint16_t>{0, 0}));
    EXPECT_EQ(client.Call(kGet).bytes, (Bytes{2, 2, 2}));
  }
  std::remove(file.c_str());
}

}  // namespace
}  // namespace embedded_stack_test
