#include "embedded_stack/handlers.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vsomeip_v3::embedded
