#include "embedded_stack/handlers.h"

#include <gtest/gtest.h>

#include "embedded_stack/dispatcher.h"

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

}  // namespace
}  // namespace vsomeip_v3::embedded
