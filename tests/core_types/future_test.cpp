#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core_types/promise.h"

#if defined(__SANITIZE_THREAD__)
#define TARN7_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TARN7_THREAD_SANITIZER
#endif
#endif

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
  EXPECT_THROW(Future<int>().wait_for(std::chrono::seconds(0)), ara::core::FutureException);
  EXPECT_THROW(Future<int>().wait_until(std::chrono::steady_clock::now()), ara::core::FutureException);
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

// The result is there when the continuation runs, and it runs when a promise is broken.
TEST(Future, RunsAContinuationWhenTheResultIsThere) {
  enum class Way { kSet, kDestroyed, kAssignedOver };
  for (const Way way : {Way::kSet, Way::kDestroyed, Way::kAssignedOver}) {
    auto promise = std::make_unique<Promise<int>>();
    auto future = promise->get_future();
    int calls = 0;
    future.then([&] {
      ++calls;
      ASSERT_TRUE(future.is_ready());
      const auto result = future.GetResult();
      EXPECT_EQ(result.HasValue(), way == Way::kSet);
      EXPECT_EQ(result, way == Way::kSet ? ara::core::Result<int>(1) : MakeErrorCode(future_errc::broken_promise));
    });
    if (way == Way::kSet) {
      promise->SetResult(1);
    } else if (way == Way::kDestroyed) {
      promise.reset();
    } else {
      Promise<int> other;
      auto itsFuture = other.get_future();
      *promise = std::move(other);
      promise->SetResult(2);
      EXPECT_EQ(itsFuture.get(), 2) << "the other promise has moved in";
    }
    promise.reset();
    EXPECT_EQ(calls, 1);
  }
}

TEST(Future, AStoreThatThrowsLosesNoContinuation) {
#ifdef TARN7_THREAD_SANITIZER
  GTEST_SKIP()
      << "ThreadSanitizer's pthread_once() never returns after an exception, which the standard library relies on";
#endif
  struct Value {
    explicit Value(bool throwing) : throws(throwing) {}
    Value(Value&& other) : throws(other.throws) {
      if (std::exchange(other.throws, false)) throw std::runtime_error("no memory");
    }
    Value(const Value&) = default;
    Value& operator=(const Value&) = default;
    bool throws;
  };
  Promise<Value> promise;
  auto future = promise.get_future();
  int calls = 0;
  future.then([&] { ++calls; });
  ara::core::Result<Value> result{Value(false)};
  result.value().throws = true;
  EXPECT_THROW(promise.SetResult(std::move(result)), std::runtime_error);
  EXPECT_EQ(calls, 0);
  EXPECT_FALSE(future.is_ready());
  promise.SetError(MakeErrorCode(future_errc::no_state));
  EXPECT_EQ(calls, 1);
}

// What a continuation owns may be the last to own its future, and then goes with it.
TEST(Future, ReplacingAContinuationDestroysItWithoutALock) {
  struct Call {
    Promise<int> promise;
    Future<int> future{promise.get_future()};
  };
  int calls = 0;
  for (const bool isReady : {false, true}) {
    for (const bool replacedByNothing : {false, true}) {
      auto call = std::make_shared<Call>();
      const std::weak_ptr<Call> weak = call;
      auto* const future = &call->future;
      if (isReady) {
        call->promise.SetResult(1);
        calls = 0;
      } else {
        future->then([call] { FAIL() << "it was replaced"; });
        call.reset();
      }
      if (replacedByNothing) {
        future->then(nullptr);
      } else {
        future->then([&] { ++calls; });
      }
      call.reset();
      EXPECT_TRUE(weak.expired());
      EXPECT_EQ(calls, isReady && !replacedByNothing ? 1 : 0);
    }
  }
}

TEST(Future, ThenNothingTakesTheContinuationBack) {
  Promise<int> promise;
  auto future = promise.get_future();
  future.then([] { FAIL() << "it was taken back"; });
  future.then(nullptr);
  promise.SetResult(1);
  future.then(nullptr);
}

TEST(Future, WhatAContinuationThrowsGoesToWhoSetTheResult) {
  Promise<int> promise;
  auto future = promise.get_future();
  future.then([] { throw std::runtime_error("thrown"); });
  EXPECT_THROW(promise.SetResult(1), std::runtime_error);
  EXPECT_EQ(future.get(), 1) << "the result is set";

  for (const bool isException : {true, false}) {
    auto broken = std::make_unique<Promise<int>>();
    auto itsFuture = broken->get_future();
    itsFuture.then([isException] {
      if (isException) throw std::runtime_error("thrown");
      throw 1;
    });
    testing::internal::CaptureStderr();
    broken.reset();
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text, std::string("A continuation has thrown when its promise was broken: ") +
                        (isException ? "thrown\n" : "what it threw is no exception\n"));
  }
}

// Each runs on a thread of its own and destroys the other's future.
TEST(Future, TwoContinuationsMayDestroyEachOthersFutures) {
  Promise<int> promises[2];
  std::unique_ptr<Future<int>> futures[2];
  std::promise<void> entered[2];
  for (std::size_t i : {0U, 1U}) {
    futures[i] = std::make_unique<Future<int>>(promises[i].get_future());
    futures[i]->then([&, i] {
      entered[i].set_value();
      entered[1 - i].get_future().wait();
      futures[1 - i].reset();
    });
  }
  std::thread other([&] { promises[1].SetResult(1); });
  promises[0].SetResult(1);
  other.join();
  EXPECT_EQ(futures[0], nullptr);
  EXPECT_EQ(futures[1], nullptr);
}

TEST(Future, AContinuationMayDestroyItsOwnFuture) {
  Promise<int> promise;
  auto future = std::make_unique<Future<int>>(promise.get_future());
  future->then([&] { future.reset(); });
  promise.SetResult(1);
  EXPECT_EQ(future, nullptr);
}

// Also for what the continuation owns, and also on a thread that has been in a continuation before.
TEST(Future, DestructionWaitsForARunningContinuation) {
  struct Owned {
    std::future<void> destroyed;
    ~Owned() {
      EXPECT_EQ(destroyed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout)
          << "the continuation, or what it owns, was there after its future had gone";
    }
  };
  Promise<int> before;
  auto itsFuture = before.get_future();
  itsFuture.then([] {});
  before.SetResult(1);

  Promise<int> promise;
  auto future = std::make_unique<Future<int>>(promise.get_future());
  std::promise<void> entered;
  std::promise<void> destroyed;
  auto owned = std::make_shared<Owned>();
  owned->destroyed = destroyed.get_future();
  future->then([&entered, owned = std::move(owned)] { entered.set_value(); });
  std::thread setter([&] { promise.SetResult(1); });
  entered.get_future().wait();
  future.reset();
  destroyed.set_value();
  setter.join();
}

TEST(Promise, IsHeldWhileItsContinuationRuns) {
  Promise<int> promise;
  auto future = promise.get_future();
  std::future<std::error_code> second;
  future.then([&] {
    second = std::async(std::launch::async, [&] { return FutureErrorOf([&] { promise.SetResult(2); }); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  });
  promise.SetResult(1);
  EXPECT_EQ(second.get(), std::future_errc::promise_already_satisfied);
}

TEST(Future, MovesWithItsResultAndItsContinuation) {
  Promise<int> promise;
  Future<int> future;
  future = promise.get_future();
  int calls = 0;
  future.then([&] { ++calls; });
  std::thread setter([&] { promise.SetResult(1); });
  future.wait();
  EXPECT_TRUE(future.is_ready());
  setter.join();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(future.wait_until(std::chrono::steady_clock::now()), Status::ready);
  EXPECT_EQ(future.get(), 1);

  Promise<int> other;
  future = other.get_future();
  future.then([&] { ++calls; });
  future = Future<int>();  // and with it goes the continuation
  other.SetResult(2);
  EXPECT_EQ(calls, 1);
}

// Between the store of the result and the run of its continuation there is a moment in which it may be taken back.
TEST(Future, AContinuationThatWasTakenBackDoesNotRunAnyMore) {
  using ara::core::internal::Continuation;
  int calls = 0;
  const auto slot = Continuation::Store([&] { ++calls; });
  const auto due = slot;
  Continuation::In(slot)->TakeBack();
  due();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(Continuation::Store(nullptr), nullptr);
  EXPECT_EQ(Continuation::In(nullptr), nullptr);
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
