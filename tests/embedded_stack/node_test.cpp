// Applications in one process: each is a node of its own, so all of this goes over the network.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <dlfcn.h>
#include <fstream>
#include <future>
#include <poll.h>
#include <pthread.h>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/embedded_stack/test_node.h"
#include "tests/support/child_process.h"

namespace {
std::atomic<int> threads_left{1000000};
}

// What the C library does, for as long as there are threads.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*run)(void*), void* argument) {
  if (threads_left-- <= 0) return EAGAIN;
  static const auto create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return create(thread, attributes, run, argument);
}

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

// Session 0 means that there is none.
TEST(NodeTest, SessionsOfRequestsWrapWithoutZero) {
  Provider provider({1});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  const auto first = static_cast<vsomeip::session_t>(client.Send(0x7777));
  for (int i = 1; i < 0xFFFF; ++i) ASSERT_NE(client.Send(0x7777) & 0xFFFFU, 0U) << i;
  EXPECT_EQ(client.Call(kGet).bytes, Bytes{1});
  EXPECT_EQ(static_cast<vsomeip::session_t>(client.Send(kGet)), first + 1);
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

TEST(NodeTest, OneThreadIsLeftToReceiveWhenAsManyHandlersBlockAsMay) {
  Record<int> entered;
  std::promise<void> release;
  Provider provider({1});
  provider->register_message_handler(kService, kInstance, 0x0050,
                                     [&entered, released = release.get_future().share()](const auto&) {
                                       entered.Add(0);
                                       released.wait();
                                     });
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  for (int i = 0; i < 12; ++i) client.Send(0x0050);
  ASSERT_TRUE(entered.WaitForCount(10));
  Client newcomer;
  newcomer.Subscribe();
  EXPECT_TRUE(newcomer.values.WaitForLast({1}));
  EXPECT_EQ(entered.Items().size(), 10U);
  release.set_value();
  EXPECT_TRUE(entered.WaitForCount(12));
  EXPECT_EQ(newcomer.Call(kGet).bytes, Bytes{1});
}

// A peer that asks for more than can be sent to it: no answer is made for which there is no room.
TEST(NodeTest, GreedyPeerKeepsNobodyWaiting) {
  Provider provider(Bytes(16U << 20U, 1));
  Client greedy;
  Client other;
  std::atomic<int> asked{0};
  provider->register_message_handler(kService, kInstance, kReverse, [&](const auto& request) {
    ++asked;
    const auto response = vsomeip::runtime::get()->create_response(request);
    response->set_payload(MakePayload(Bytes(16U << 20U)));
    provider->send(response);
  });
  for (Client* each : {&greedy, &other}) ASSERT_TRUE(each->availability.WaitForLast(true));
  for (int i = 0; i < 500; ++i) greedy.Send(kReverse);
  EXPECT_EQ(other.Call(kSet, {2}).code, vsomeip::return_code_e::E_OK);
  EXPECT_LT(asked, 100);
}

TEST(NodeTest, WhatGoesOutAtOnceHasRoomAtAReceiverThatDoesNotRun) {
  support::ChildProcess provider(FIELD_PROVIDER, {std::to_string(kInstance), "1", "3"});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  for (std::size_t round = 1; round <= 4; ++round) {
    provider.Suspend();
    client.Send(kSet, Bytes(60000, static_cast<vsomeip::byte_t>(round)));
    provider.Continue();
    EXPECT_TRUE(client.replies.WaitForCount(round)) << round;
  }
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

// With one thread of its own a node does all that it has to, if nobody blocks it; without any it says so.
TEST(NodeTest, ThreadsThatCannotBeCreatedEndNothing) {
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(false));
  const auto provider = vsomeip::runtime::get()->create_application("threadless");
  provider->register_message_handler(kService, kInstance, kGet, [&](const std::shared_ptr<vsomeip::message>& request) {
    provider->send(vsomeip::runtime::get()->create_response(request));
  });
  ErrorOutput error;
  ASSERT_TRUE(provider->init());
  threads_left = 0;
  provider->start();  // returns
  EXPECT_EQ(error.WaitForCount("cannot start: ", 1), 1U) << error.output;
  ASSERT_TRUE(provider->init());
  provider->offer_service(kService, kInstance, kMajor);
  threads_left = 2;
  std::thread thread([&] { provider->start(); });
  ASSERT_TRUE(client.availability.WaitForLast(true));
  for (int i = 0; i < 10; ++i) EXPECT_EQ(client.Call(kGet).code, vsomeip::return_code_e::E_OK);
  EXPECT_EQ(error.WaitForCount("cannot start a thread", 2), 2U) << error.output;
  threads_left = 1000000;
  provider->stop();
  thread.join();
}

// A queue full of calls: what changes meanwhile is told when there is room again.
TEST(NodeTest, AvailabilityAndStatusAreToldEvenIfTheQueueWasFull) {
  constexpr int kHandlers = 10;  // that run beside each other
  std::atomic<int> blocked{0};
  Client client;
  Client other;  // hears of the same, without delay
  for (Client* each : {&client, &other}) each->Subscribe();
  auto provider = std::make_unique<Provider>(Bytes{1});
  const auto block = [&](const std::shared_future<void>& released) {
    for (Client* each : {&client, &other}) ASSERT_TRUE(each->status.WaitForLast(0));
    blocked = 0;
    for (int i = 0; i < 66000; ++i) {
      while (i == kHandlers && blocked < kHandlers) std::this_thread::yield();
      client->get_offered_services_async(vsomeip::offer_type_e::OT_ALL, [&blocked, released](const auto&) {
        ++blocked;
        released.wait();
      });
    }
  };
  std::promise<void> first;
  block(first.get_future());
  provider.reset();
  ASSERT_TRUE(other.availability.WaitForLast(false));
  first.set_value();
  EXPECT_TRUE(client.availability.WaitForLast(false));

  provider = std::make_unique<Provider>(Bytes{2});
  for (Client* each : {&client, &other}) ASSERT_TRUE(each->status.WaitForCount(2));
  std::promise<void> second;
  block(second.get_future());
  provider.reset();
  provider = std::make_unique<Provider>(Bytes{3});
  ASSERT_TRUE(other.status.WaitForCount(3));
  second.set_value();
  EXPECT_TRUE(client.status.WaitForCount(3));
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

// What is sent are the bytes as they were, whoever owns them, whatever becomes of them, and however long they wait.
TEST(NodeTest, BytesThatWaitCanBeChangedByTheirOwner) {
  constexpr std::size_t kLarge = 1U << 20U;  // more than goes out at once
  Provider provider({1});
  Client client;
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForLast({1}));
  const auto payload = MakePayload(Bytes(kLarge, 1));
  std::thread other([&] {  // to the same target, beside it
    for (vsomeip::byte_t i = 20; i < 30; ++i) provider.Notify(Bytes(kLarge / 8 + i, i));
  });
  for (vsomeip::byte_t i = 2; i < 10; ++i) {
    provider->notify(kService, kInstance, kField, payload);
    std::fill_n(payload->get_data(), kLarge, i);
  }
  other.join();
  provider.Notify({0});
  ASSERT_TRUE(client.values.WaitForLast({0}));
  std::vector<int> ours;
  std::vector<int> others;
  for (const Bytes& value : client.values.Items()) {
    EXPECT_EQ(std::count(value.begin(), value.end(), value[0]), static_cast<std::ptrdiff_t>(value.size())) << "mixed";
    if (value.size() > 1) (value.size() == kLarge ? ours : others).push_back(value[0]);
  }
  EXPECT_EQ(ours, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(others, (std::vector<int>{20, 21, 22, 23, 24, 25, 26, 27, 28, 29}));

  auto request = vsomeip::runtime::get()->create_request();
  request->get_payload()->set_data(Bytes{1, 2, 3});  // the one that it has from the start
  request->set_payload(request->get_payload());
  EXPECT_EQ(BytesOf(*request), (Bytes{1, 2, 3}));
  const std::weak_ptr<vsomeip::message> end = request;
  const auto kept = request->get_payload();
  request.reset();
  EXPECT_EQ(kept->get_length(), 3U);
  std::weak_ptr<vsomeip::payload>(kept).lock().reset();
  EXPECT_FALSE(end.expired());
}

TEST(NodeTest, ApplicationMayEndWhileALargeValueIsOnItsWay) {
  for (int i = 0; i < 5; ++i) {
    auto provider = std::make_unique<Provider>(Bytes{1});
    auto client = std::make_unique<Client>();
    client->Subscribe();
    ASSERT_TRUE(client->values.WaitForLast({1}));
    provider->Notify(Bytes(8U << 20U, 2));
    if (i % 2 == 0) client.reset();
    provider.reset();
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
