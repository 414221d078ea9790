#include "tests/proxy/proxy_fixture.h"

// Several proxies of one service instance follow the same event: the stack knows one subscription.
namespace {

using namespace proxy_test;
using ::testing::Each;
using ::testing::ElementsAre;
using State = SubscriptionState;

class SharedEventTest : public BoundProxyTest {
 protected:
  void TearDown() override {
    other_.reset();
    BoundProxyTest::TearDown();
  }

  std::unique_ptr<EnergySystemImpl> other_ = std::make_unique<EnergySystemImpl>(kInstance);
  Field& other_field_ = other_->Getnotifications();
};

TEST_F(SharedEventTest, TheLastToGoEndsTheSubscription) {
  field_.Subscribe(2);
  other_field_.Subscribe(2);
  Report(kAccepted);
  application_.Deliver(NotificationOf(1));
  application_.TakeCalls();
  field_.Unsubscribe();
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "the other one goes on";
  application_.Deliver(NotificationOf(2));
  EXPECT_THAT(Fetch(other_field_), ElementsAre(1, 2));
  EXPECT_THAT(Fetch(field_), ElementsAre());
  Report(kAccepted);
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
  other_.reset();
  EXPECT_THAT(application_.TakeCalls(), ::testing::Contains("unsubscribe 6005 7 c010"));
}

// The stack sends a field's value once, to the first. The second finds it in its cache at once, but is told on a thread
// of the stack: its receive handler never runs inside Subscribe().
TEST_F(SharedEventTest, WhoJoinsLaterHasTheLatestValueAndIsToldByTheStack) {
  field_.Subscribe(2);
  Report(kAccepted);
  application_.Deliver(NotificationOf(1));
  int ours = 0;
  field_.SetReceiveHandler([&] { ++ours; });
  int calls = 0;
  std::vector<State> states;
  other_field_.SetReceiveHandler([&] { ++calls; });
  other_field_.SetSubscriptionStateChangeHandler([&](State state) { states.push_back(state); });
  other_field_.Subscribe(2);
  EXPECT_EQ(calls, 0);
  EXPECT_THAT(states, ElementsAre(State::kSubscriptionPending));
  EXPECT_TRUE(field_.IsSubscribed()) << "asking for one more does not disturb the others";
  Report(kAccepted);  // as a stack answers who asks again
  Report(kAccepted);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(ours, 0);
  EXPECT_THAT(states, ElementsAre(State::kSubscriptionPending, State::kSubscribed, State::kSubscribed));
  EXPECT_THAT(Fetch(other_field_), ElementsAre(1));
  EXPECT_THAT(Fetch(field_), ElementsAre(1));
  other_field_.Subscribe(2);
  EXPECT_THAT(Fetch(other_field_), ElementsAre()) << "it was there already";
}

TEST_F(SharedEventTest, ANotificationAfterJoiningAnnouncesTheLatestValueAsWell) {
  field_.Subscribe(2);
  application_.Deliver(NotificationOf(1));
  int calls = 0;
  other_field_.SetReceiveHandler([&] { ++calls; });
  other_field_.Subscribe(2);
  application_.Deliver(NotificationOf(2));
  Report(kAccepted);
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(Fetch(other_field_), ElementsAre(1, 2));
}

TEST_F(SharedEventTest, AValueWhoseProviderWentIsNotHandedOn) {
  const auto lose = [this] {
    application_.ReportAvailability(kService, kInstance, true);
    application_.ReportAvailability(kService, kInstance, false);
  };
  const auto reject = [this] { Report(kRejected); };
  const auto end = [this] { field_.Unsubscribe(); };
  for (const std::function<void()>& loss :
       {std::function<void()>(lose), std::function<void()>(reject), std::function<void()>(end)}) {
    field_.Subscribe(1);
    Report(kAccepted);
    application_.Deliver(NotificationOf(1));
    loss();
    int calls = 0;
    other_field_.SetReceiveHandler([&] { ++calls; });
    other_field_.Subscribe(1);
    Report(kAccepted);
    EXPECT_EQ(calls, 0);
    EXPECT_THAT(Fetch(other_field_), ElementsAre());
    field_.Unsubscribe();
    other_field_.Unsubscribe();
  }
}

TEST_F(SharedEventTest, ALossConcernsWhoeverTakesPart) {
  std::vector<State> states;
  field_.SetSubscriptionStateChangeHandler([&](State state) { states.push_back(state); });
  field_.Subscribe(1);
  application_.ReportAvailability(kService, kInstance, true);
  application_.ReportAvailability(kService, kInstance, false);
  EXPECT_THAT(states, ElementsAre(State::kSubscriptionPending)) << "it was pending before";
  EXPECT_EQ(other_field_.GetSubscriptionState(), State::kNotSubscribed);
}

TEST_F(SharedEventTest, OneThatFailsToSubscribeLeavesTheOthersAlone) {
  field_.Subscribe(1);
  Report(kAccepted);
  application_.on_call = [](const std::string& call) {
    if (call.rfind("subscribe", 0) == 0) {
      throw std::runtime_error("no network");
    }
  };
  testing::internal::CaptureStderr();
  other_field_.Subscribe(1);
  testing::internal::GetCapturedStderr();
  application_.on_call = nullptr;
  EXPECT_EQ(other_field_.GetSubscriptionState(), State::kNotSubscribed);
  EXPECT_TRUE(field_.IsSubscribed());
  application_.Deliver(NotificationOf(1));
  EXPECT_THAT(Fetch(field_), ElementsAre(1));
  EXPECT_THAT(Fetch(other_field_), ElementsAre());
}

// The first fails when the second has joined already: that one subscribes, and follows the provider as well.
TEST_F(SharedEventTest, OneThatSubscribesWhileAnotherFailsFollowsTheProvider) {
  std::thread second;
  bool fails = true;
  application_.on_call = [&](const std::string& call) {
    if (call.rfind("subscribe", 0) == 0 && std::exchange(fails, false)) {
      second = std::thread([this] { other_field_.Subscribe(1); });
      while (other_field_.GetSubscriptionState() != State::kSubscriptionPending) {
        std::this_thread::yield();
      }
      throw std::runtime_error("no network");
    }
  };
  testing::internal::CaptureStderr();
  field_.Subscribe(1);
  testing::internal::GetCapturedStderr();
  second.join();
  application_.on_call = nullptr;
  Report(kAccepted);
  EXPECT_TRUE(other_field_.IsSubscribed());
  application_.ReportAvailability(kService, kInstance, true);
  application_.ReportAvailability(kService, kInstance, false);
  EXPECT_EQ(other_field_.GetSubscriptionState(), State::kSubscriptionPending);
}

// Several threads subscribe one event, or two events of one instance, at once. The stack answers each subscription on
// a thread of its own.
TEST_F(SharedEventTest, SubscribingAtOnceEndsSubscribed) {
  StackThread stack;
  application_.on_call = [&](const std::string& call) {
    if (call.rfind("subscribe", 0) == 0) {
      stack.Push([this] { Report(kAccepted); });
    }
  };
  std::vector<State> ends;
  for (int round = 0; round < 1000; ++round) {
    std::vector<std::thread> threads;
    for (Field* const field : {&field_, &field_, &other_field_}) {
      threads.emplace_back([field] { field->Subscribe(1); });
    }
    for (auto& thread : threads) {
      thread.join();
    }
    stack.Drain();
    ends.push_back(field_.GetSubscriptionState());
    ends.push_back(other_field_.GetSubscriptionState());
    std::thread leaving([this] { field_.Unsubscribe(); });
    other_field_.Unsubscribe();
    leaving.join();
    stack.Drain();
  }
  EXPECT_THAT(ends, Each(State::kSubscribed));
  EXPECT_EQ(application_.CountLeftovers(), 5U) << "four getters and one service";
}

}  // namespace
