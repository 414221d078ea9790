#include <atomic>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <unistd.h>

#include "tests/proxy/proxy_fixture.h"

// Handlers of the application: on which thread, how often, and what they may do.
namespace {

using namespace proxy_test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using State = SubscriptionState;

class EventHandlersTest : public BoundProxyTest {
 public:
  Field& Notifications() { return binding_->Getnotifications(); }

  using BoundProxyTest::application_;
  using BoundProxyTest::binding_;
  using BoundProxyTest::Report;
};

TEST_F(EventHandlersTest, TheReceiveHandlerIsCalledUntilItIsTakenBack) {
  int calls = 0;
  const auto count = [&] {
    ++calls;
    Fetch(field_);  // may call back
  };
  field_.SetReceiveHandler(count);
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  field_.UnsetReceiveHandler();
  application_.Deliver(NotificationOf(2));
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(Fetch(field_), ElementsAre(2));

  field_.SetReceiveHandler(count);
  field_.Unsubscribe();
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(3));
  EXPECT_EQ(calls, 1) << "Unsubscribe takes it back as well";
}

TEST_F(EventHandlersTest, CallsThatWereDueGoWithTheirHandler) {
  int calls = 0;
  field_.SetReceiveHandler([&] {
    application_.Deliver(NotificationOf(2));
    field_.UnsetReceiveHandler();
    field_.SetReceiveHandler([&] { ++calls; });
  });
  field_.Subscribe(3);
  application_.Deliver(NotificationOf(1));
  EXPECT_EQ(calls, 0);
  application_.Deliver(NotificationOf(3));
  EXPECT_EQ(calls, 1);
  // Taken back and not replaced: there is nobody to call.
  field_.SetReceiveHandler([&] {
    application_.Deliver(NotificationOf(4));
    field_.UnsetReceiveHandler();
  });
  application_.Deliver(NotificationOf(5));
  // Replaced at once: the new one gets what was due.
  field_.SetReceiveHandler([&] {
    application_.Deliver(NotificationOf(6));
    field_.SetReceiveHandler([&] { ++calls; });
  });
  application_.Deliver(NotificationOf(7));
  EXPECT_EQ(calls, 2);
}

// A handler that is slower than its notifications is called for those that wait, not for those that went unread.
TEST_F(EventHandlersTest, ABusyReceiveHandlerFallsBehindByItsCacheOnly) {
  int calls = 0;
  field_.SetReceiveHandler([&] {
    for (unsigned number = 0; calls == 0 && number < 1000; ++number) {
      application_.Deliver(NotificationOf(number));
    }
    ++calls;
  });
  field_.Subscribe(2);
  application_.Deliver(NotificationOf(0));
  EXPECT_EQ(calls, 3);
  EXPECT_THAT(Fetch(field_), ElementsAre(998, 999));
}

// A loss is told to one field after the other. What comes meanwhile, because a handler takes its time, is newer.
TEST_F(EventHandlersTest, ALossThatIsToldLateUndoesNothing) {
  auto& batteries = binding_->GetlowVoltageBatteries();
  const auto accept = [&] {
    Report(kAccepted);
    application_.ReportStatus(kService, kInstance, 0xC030, kAccepted);
  };
  field_.Subscribe(1);
  batteries.Subscribe(1);
  application_.ReportAvailability(kService, kInstance, true);
  accept();
  bool isFirst = true;
  const auto handler = [&](State state) {
    if (state == State::kSubscriptionPending && std::exchange(isFirst, false)) {
      std::thread network([&] {
        application_.ReportAvailability(kService, kInstance, true);
        accept();
      });
      network.join();
    }
  };
  field_.SetSubscriptionStateChangeHandler(handler);
  batteries.SetSubscriptionStateChangeHandler(handler);
  application_.ReportAvailability(kService, kInstance, false);
  EXPECT_FALSE(isFirst);
  EXPECT_TRUE(field_.IsSubscribed());
  EXPECT_TRUE(batteries.IsSubscribed());
}

TEST_F(EventHandlersTest, TheStateHandlerIsCalledUntilItIsTakenBack) {
  std::vector<State> states;
  field_.SetSubscriptionStateChangeHandler([&](State state) {
    states.push_back(state);
    field_.UnsetSubscriptionStateChangeHandler();
  });
  field_.Subscribe(1);
  Report(kAccepted);
  EXPECT_THAT(states, ElementsAre(State::kSubscriptionPending));
}

TEST_F(EventHandlersTest, AHandlerMayEndItsOwnSubscription) {
  field_.SetReceiveHandler([&] { field_.Unsubscribe(); });
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);

  field_.SetSubscriptionStateChangeHandler([&](State state) {
    if (state == State::kSubscriptionPending) {
      field_.Unsubscribe();
    }
  });
  application_.TakeCalls();
  field_.Subscribe(1);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
}

TEST_F(EventHandlersTest, AHandlerMaySubscribeAgainWhenToldThatItIsNotSubscribed) {
  bool again = true;
  field_.SetSubscriptionStateChangeHandler([&](State state) {
    if (state == State::kNotSubscribed && std::exchange(again, false)) {
      field_.Subscribe(3);
      application_.Deliver(NotificationOf(1));
    }
  });
  field_.Subscribe(3);
  Report(kRejected);
  Report(kAccepted);
  EXPECT_TRUE(field_.IsSubscribed());
  EXPECT_THAT(Fetch(field_), ElementsAre(1));
  application_.Deliver(NotificationOf(2));
  again = true;
  field_.Unsubscribe();
  Report(kAccepted);
  EXPECT_TRUE(field_.IsSubscribed());
  EXPECT_THAT(Fetch(field_), ElementsAre(1)) << "what was not fetched goes, and nothing of the new subscription";
}

// Whoever calls into a proxy may find it destroyed afterwards, by a handler that the call has run.
TEST_F(EventHandlersTest, AHandlerMayDestroyItsProxyWhereverItRuns) {
  struct Case {
    const char* what;
    std::function<void(EventHandlersTest&)> prepare;
    std::function<void(EventHandlersTest&)> act;
  };
  const auto destroyOn = [](State wanted) {
    return [wanted](EventHandlersTest& test) {
      test.Notifications().SetSubscriptionStateChangeHandler([&test, wanted](State state) {
        if (state == wanted) {
          test.binding_.reset();
        }
      });
    };
  };
  const auto destroyOnReceive = [](EventHandlersTest& test) {
    test.Notifications().SetReceiveHandler([&test] { test.binding_.reset(); });
  };
  const auto subscribe = [](EventHandlersTest& test) { test.Notifications().Subscribe(2); };
  const Case cases[] = {
      {"state handler inside Subscribe", destroyOn(State::kSubscriptionPending), subscribe},
      {"state handler inside Unsubscribe", destroyOn(State::kNotSubscribed),
       [&](auto& test) {
         subscribe(test);
         test.Notifications().Unsubscribe();
       }},
      {"state handler in a failing Subscribe", destroyOn(State::kNotSubscribed),
       [&](auto& test) {
         test.application_.on_call = [](const std::string& call) {
           if (call.rfind("subscribe", 0) == 0) {
             throw std::runtime_error("no network");
           }
         };
         subscribe(test);
       }},
      {"state handler on a status", destroyOn(State::kSubscribed),
       [&](auto& test) {
         subscribe(test);
         test.Report(kAccepted);
       }},
      {"state handler on a loss", destroyOn(State::kSubscriptionPending),
       [&](auto& test) {
         test.Notifications().UnsetSubscriptionStateChangeHandler();
         subscribe(test);
         test.Report(kAccepted);
         test.application_.ReportAvailability(kService, kInstance, true);
         test.Notifications().SetSubscriptionStateChangeHandler([&test](State) { test.binding_.reset(); });
         test.application_.ReportAvailability(kService, kInstance, false);
       }},
      {"receive handler", destroyOnReceive,
       [&](auto& test) {
         subscribe(test);
         test.application_.Deliver(NotificationOf(1));
       }},
      {"receive handler of one that joins", destroyOnReceive,
       [&](auto& test) {
         EnergySystemImpl first(kInstance);
         first.Getnotifications().Subscribe(1);
         test.application_.Deliver(NotificationOf(1));
         subscribe(test);
         test.Report(kAccepted);
       }},
      {"callback of GetNewSamples", [](auto&) {},
       [&](auto& test) {
         subscribe(test);
         test.application_.Deliver(NotificationOf(1));
         test.application_.Deliver(NotificationOf(2));
         int delivered = 0;
         test.Notifications().GetNewSamples([&](SamplePtr<const Value> sample) {
           test.binding_.reset();
           EXPECT_EQ(sample->at(0).member0, 1U);
           ++delivered;
         });
         EXPECT_EQ(delivered, 1);
       }},
  };
  for (const Case& test : cases) {
    binding_ = std::make_unique<EnergySystemImpl>(kInstance);
    testing::internal::CaptureStderr();
    test.prepare(*this);
    test.act(*this);
    testing::internal::GetCapturedStderr();
    application_.on_call = nullptr;
    EXPECT_EQ(binding_, nullptr) << test.what << ": the handler did not run";
    EXPECT_EQ(application_.CountLeftovers(), 0U) << test.what;
  }
}

TEST_F(EventHandlersTest, CallsOfTheReceiveHandlerNeverNest) {
  int depth = 0;
  int calls = 0;
  field_.SetReceiveHandler([&] {
    EXPECT_EQ(++depth, 1);
    if (++calls < 3) {
      application_.Deliver(NotificationOf(static_cast<unsigned>(calls)));
      field_.Subscribe(5);
      Report(kAccepted);
    }
    --depth;
  });
  field_.Subscribe(5);
  application_.Deliver(NotificationOf(0));
  EXPECT_EQ(calls, 3);
}

// A thread that brings a notification while the handler runs leaves the call to the thread that is in the handler: it
// does not wait, as it might wait for ever.
TEST_F(EventHandlersTest, CallsOfTheReceiveHandlerNeverOverlapAndNoThreadWaitsForThem) {
  std::atomic<int> calls{0};
  std::atomic<bool> running{false};
  field_.SetReceiveHandler([&] {
    EXPECT_FALSE(running.exchange(true));
    if (++calls == 1) {
      std::thread second([&] { application_.Deliver(NotificationOf(2)); });
      second.join();
      EXPECT_EQ(calls, 1);
    }
    running = false;
  });
  field_.Subscribe(5);
  application_.Deliver(NotificationOf(1));
  EXPECT_EQ(calls, 2);
}

TEST_F(EventHandlersTest, StatesAreToldInTheirOrderAlsoWhenThreadsMeet) {
  std::vector<State> states;
  field_.SetSubscriptionStateChangeHandler([&](State state) {
    states.push_back(state);
    if (states.size() == 1) {
      std::thread network([&] {
        Report(kAccepted);
        Report(kRejected);
      });
      network.join();
    }
  });
  field_.Subscribe(1);
  EXPECT_THAT(states, ElementsAre(State::kSubscriptionPending)) << "nothing was subscribed yet, so nothing answered";
  states.clear();
  Report(kAccepted);
  EXPECT_THAT(states, ElementsAre(State::kSubscribed, State::kSubscribed, State::kNotSubscribed));
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
}

TEST_F(EventHandlersTest, TwoFieldsMaySubscribeInEachOthersHandlers) {
  EnergySystemImpl other(kInstance);  // has both values already
  auto& batteries = binding_->GetlowVoltageBatteries();
  std::promise<void> inOne;
  std::promise<void> inOther;
  for (auto* const field : {&field_, &other.Getnotifications()}) {
    field->Subscribe(1);
  }
  for (auto* const field : {&batteries, &other.GetlowVoltageBatteries()}) {
    field->Subscribe(1);
  }
  std::atomic<int> done{0};
  field_.SetReceiveHandler([&] {
    inOne.set_value();
    inOther.get_future().wait();
    batteries.Unsubscribe();
    batteries.Subscribe(1);
    ++done;
  });
  batteries.SetReceiveHandler([&] {
    inOther.set_value();
    inOne.get_future().wait();
    field_.Unsubscribe();
    field_.Subscribe(1);
    ++done;
  });
  std::thread network([&] { application_.Deliver(NotificationOf(1)); });
  application_.Deliver(support::Notification(kService, kInstance, 0xC030, 4, "00000000"));
  network.join();
  EXPECT_EQ(done, 2);
}

TEST_F(EventHandlersTest, WhatAHandlerThrowsIsLogged) {
  field_.SetReceiveHandler([] { throw std::runtime_error("broken"); });
  field_.SetSubscriptionStateChangeHandler([](State) { throw 1; });
  testing::internal::CaptureStderr();
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  application_.Deliver(NotificationOf(2));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_THAT(log, HasSubstr("A handler has thrown what is no exception\n"));
  EXPECT_THAT(log.substr(log.find("thrown: broken") + 1), HasSubstr("thrown: broken\n")) << "the second call was made";
  EXPECT_THAT(Fetch(field_), ElementsAre(2));
}

TEST_F(EventHandlersTest, AHandlerIsDestroyedWithoutALock) {
  struct CallsBack {
    Field& field;
    ~CallsBack() { field.GetSubscriptionState(); }
  };
  for (int i = 0; i < 2; ++i) {
    field_.SetReceiveHandler([object = std::make_shared<CallsBack>(CallsBack{field_})] {});
    field_.SetSubscriptionStateChangeHandler([object = std::make_shared<CallsBack>(CallsBack{field_})](State) {});
  }
  field_.SetReceiveHandler(
      [&, object = std::make_shared<CallsBack>(CallsBack{field_})] { field_.UnsetReceiveHandler(); });
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
}

/// Whether a thread of this process sleeps.
bool IsAsleep(pid_t thread) {
  std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(stat), {}};
  return text.find(") S ") != std::string::npos;
}

// A handler of one field may use every other field of its proxy. So none of them goes before all handlers have ended,
// and none of them gets a handler any more.
TEST_F(EventHandlersTest, TheDestructorWaitsForRunningHandlersAndAllowsNoNewOne) {
  auto& batteries = binding_->GethighVoltageBatteries();
  std::atomic<bool> destroyed{false};
  std::promise<void> inHandler;
  std::promise<void> go;
  batteries.Subscribe(1);
  field_.SetReceiveHandler([&] {
    inHandler.set_value();
    go.get_future().wait();
    EXPECT_FALSE(destroyed);
    batteries.SetReceiveHandler([] { ADD_FAILURE() << "a handler runs although its proxy is being destroyed"; });
    application_.Deliver(support::Notification(kService, kInstance, 0xC020, 4, "00000000"));
    EXPECT_EQ(batteries.GetFreeSampleCount(), 1U);
  });
  std::atomic<int> states{0};
  field_.SetSubscriptionStateChangeHandler([&](State) { ++states; });
  field_.Subscribe(1);
  std::thread network([&] { application_.Deliver(NotificationOf(1)); });
  inHandler.get_future().wait();

  std::promise<pid_t> id;
  std::thread destroyer([&] {
    id.set_value(gettid());
    binding_.reset();
    destroyed = true;
  });
  const pid_t thread = id.get_future().get();
  // It has taken the handlers back when a status does not reach them any more, and then it waits, or goes on.
  const auto end = std::chrono::steady_clock::now() + kDeadline;
  const auto isStopped = [&] {
    const int before = states;
    Report(kAccepted);
    return states == before;
  };
  while (!destroyed && !(isStopped() && IsAsleep(thread)) && std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
  }
  EXPECT_FALSE(destroyed) << "the destructor did not wait";
  go.set_value();
  network.join();
  destroyer.join();
}

}  // namespace
