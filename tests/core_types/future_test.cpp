#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core_types/promise.h"

namespace {

using ara::core::Future;
using ara::core::future_errc;
using ara::core::Promise;
using Status = ara::core::future_status;

template <typename Call>
std::error_code FutureErrorOf(Call call) {
  try {
    call();
  } catch (const std::future_error& error) {
    return error.code();
  }
  return {};
}

TEST(Promise, DeliversOnceAndKeepsTheFirstResult) {
  Promise<int> promise;
  auto future = promise.get_future();
  EXPECT_EQ(FutureErrorOf([&] { promise.get_future(); }), std::future_errc::future_already_retrieved);
  EXPECT_EQ(future.wait_for(std::chrono::seconds(0)), Status::timeout);
  promise.SetResult(1);
  EXPECT_EQ(FutureErrorOf([&] { promise.SetResult(2); }), std::future_errc::promise_already_satisfied);
  EXPECT_TRUE(future.is_ready());
  EXPECT_EQ(future.get(), 1);
  EXPECT_FALSE(future.valid());

  const Promise<int> taken = std::move(promise);
  EXPECT_EQ(FutureErrorOf([&] { promise.SetResult(3); }), std::future_errc::no_state);
  EXPECT_EQ(FutureErrorOf([&] { promise.get_future(); }), std::future_errc::no_state);
}

TEST(Future, TurnsStandardFutureErrorsIntoItsDomain) {
  Future<int> future = Promise<int>().get_future();
  EXPECT_TRUE(future.is_ready()) << "a broken promise wakes the waiting";
  EXPECT_EQ(future.GetResult().error(), MakeErrorCode(future_errc::broken_promise));
  EXPECT_EQ(Future<int>().GetResult().error(), MakeErrorCode(future_errc::no_state));
  EXPECT_THROW(Future<int>().wait(), ara::core::FutureException);
  EXPECT_THROW(Future<int>().then([] {}), ara::core::FutureException);
}

TEST(Future, RunsAContinuationOnceOrNever) {
  int calls = 0;
  const auto count = [&] { ++calls; };

  Promise<int> later;
  auto future = later.get_future();
  future.then(count);
  auto moved = std::move(future);
  later.SetResult(1);
  EXPECT_EQ(calls, 1) << "set after then";
  moved.then(count);
  EXPECT_EQ(calls, 2) << "already set";

  Promise<int> dropped;
  { dropped.get_future().then(count); }
  dropped.SetResult(1);
  EXPECT_EQ(calls, 2) << "its future is gone";

  Promise<int> replaced;
  auto overwritten = replaced.get_future();
  overwritten.then(count);
  overwritten = Future<int>();
  replaced.SetResult(1);
  EXPECT_EQ(calls, 2) << "its future was overwritten";
}

TEST(Future, AContinuationMayDestroyItsOwnFuture) {
  Promise<int> promise;
  auto future = std::make_unique<Future<int>>(promise.get_future());
  future->then([&] { future.reset(); });
  promise.SetResult(1);
  EXPECT_EQ(future, nullptr);
}

TEST(Future, DestructionWaitsForARunningContinuation) {
  Promise<int> promise;
  auto future = std::make_unique<Future<int>>(promise.get_future());
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> ended{false};
  future->then([&] {
    entered.set_value();
    leave.get_future().wait();
    ended = true;
  });
  std::thread setter([&] { promise.SetResult(1); });
  entered.get_future().wait();
  std::thread destroyer([&] {
    future.reset();
    EXPECT_TRUE(ended) << "the continuation ran on after its future was gone";
  });
  leave.set_value();
  destroyer.join();
  setter.join();
}

// Each future is either destroyed or completed first: the continuation runs at most once and never too late.
TEST(Future, SettingAndDestroyingMayRace) {
  for (int round = 0; round < 500; ++round) {
    Promise<int> promise;
    auto future = std::make_unique<Future<int>>(promise.get_future());
    auto alive = std::make_unique<int>(0);
    future->then([&] { ++*alive; });
    std::thread setter([&] { promise.SetResult(1); });
    future.reset();
    EXPECT_LE(*alive, 1);
    alive.reset();
    setter.join();
  }
}

}  // namespace
