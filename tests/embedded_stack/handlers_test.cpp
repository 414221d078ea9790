#include "embedded_stack/handlers.h"

#include <future>
#include <map>
#include <memory>
#include <sys/eventfd.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "embedded_stack/dispatcher.h"
#include "embedded_stack/message_impl.h"

namespace vsomeip_v3::embedded {
namespace {

// A call is queued with the handler that was there when its message came.
TEST(Handlers, AQueuedCallSurvivesAReplacementButNotTheEnd) {
  Handlers handlers;
  const Handlers::MessageKey key{1, 2, 3};
  const message_handler_t handler = [](const std::shared_ptr<message>&) {};
  handlers.SetMessage(key, handler);
  const auto queued = handlers.FindMessage(1, 2, 3);
  handlers.SetMessage(key, handler);
  EXPECT_TRUE(*queued->registered);
  handlers.SetMessage(key, nullptr);
  EXPECT_FALSE(*queued->registered);
  EXPECT_EQ(handlers.FindMessage(1, 2, 3), nullptr);
  handlers.SetMessage(key, handler);
  EXPECT_FALSE(*queued->registered) << "a later handler is another one";
}

TEST(Dispatcher, WhatWaitsIsLimited) {
  Dispatcher dispatcher(std::make_shared<Log>("dispatcher"));
  const auto push = [&](std::size_t bytes) { return dispatcher.Push({nullptr, nullptr, [] {}, bytes}); };
  EXPECT_FALSE(push(Dispatcher::kMaxMessageBytes + 1));
  std::size_t messages = 0;
  while (messages <= Dispatcher::kMaxMessages && push(1)) ++messages;
  EXPECT_EQ(messages, Dispatcher::kMaxMessages);
  EXPECT_TRUE(push(0)) << "messages leave room for everything else";
  std::size_t tasks = messages + 1;
  while (tasks <= Dispatcher::kMaxTasks && push(0)) ++tasks;
  EXPECT_EQ(tasks, Dispatcher::kMaxTasks);
  Dispatcher other(std::make_shared<Log>("other"));
  EXPECT_TRUE(other.Push({nullptr, nullptr, [] {}, Dispatcher::kMaxMessageBytes}));
  EXPECT_FALSE(other.Push({nullptr, nullptr, [] {}, 1}));
}

TEST(Dispatcher, RequestsOfOnePeerLeaveRoomForOthersAndCanBeForgotten) {
  constexpr std::uint32_t kPeer = 0x7F000001;
  constexpr std::uint32_t kOther = kPeer + 1;
  constexpr message_t kMethod = 0x00010003;
  constexpr std::size_t kAll = Dispatcher::kMaxMessages;
  std::map<client_t, std::size_t> called;
  std::promise<void> done;
  Handlers handlers;
  handlers.SetMessage({1, 2, 3}, [&called](const auto& request) { ++called[request->get_client()]; });
  const int descriptor = eventfd(0, 0);
  {
    Dispatcher dispatcher(std::make_shared<Log>("dispatcher"));
    dispatcher.Open(descriptor);
    const auto fill = [&](std::uint32_t requester) {
      std::size_t count = 0;
      const auto request = std::make_shared<MessageImpl>();
      request->set_message(kMethod);
      request->set_client(static_cast<client_t>(requester));
      while (count <= kAll && dispatcher.Push({handlers.FindMessage(1, 2, 3), request, nullptr, 1, requester})) ++count;
      return count;
    };
    EXPECT_EQ(fill(kPeer), kAll / 2);
    EXPECT_EQ(fill(kOther), kAll / 4);
    EXPECT_EQ(dispatcher.DropRequests(kPeer, kMethod + 1), 0U);
    EXPECT_EQ(dispatcher.DropRequests(kPeer, kMethod), kAll / 2);
    EXPECT_EQ(dispatcher.DropRequests(kPeer, kMethod), 0U);
    dispatcher.Push({nullptr, nullptr, [&done] { done.set_value(); }});
    dispatcher.Start([] {});
    done.get_future().wait();
    EXPECT_EQ(called[static_cast<client_t>(kPeer)], 0U);
    EXPECT_EQ(called[static_cast<client_t>(kOther)], kAll / 4);
    EXPECT_GE(fill(kPeer), kAll / 2) << "as in the beginning";
  }
  close(descriptor);
}

}  // namespace
}  // namespace vsomeip_v3::embedded
