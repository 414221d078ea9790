#include <array>
#include <atomic>
#include <cstdlib>
#include <deque>
#include <iterator>

#include "core_types/com_error_domain.h"
#include "tests/proxy/proxy_fixture.h"

// The application's threads against the network's. Worth most under a sanitizer, and for longer than in a test run:
// TARN7_STRESS_SECONDS says how long.
namespace {

using namespace proxy_test;

std::chrono::seconds Duration() {
  const char* const seconds = std::getenv("TARN7_STRESS_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? 2 : std::atoi(seconds));
}

/// Answers every request and every subscription, notifies without pause, refuses now and then, and is away at times.
/// Several threads, as a stack has that lets its handlers run side by side.
class Network {
 public:
  explicit Network(RecordingApplication& application) : application_(application) {
    application_.on_call = [this](const std::string& call) {
      if (call.rfind("subscribe", 0) == 0) {
        ++owed_statuses_;
      }
    };
    Run([this] {
      for (const auto& request : application_.TakeSent()) {
        application_.Deliver(support::ResponseTo(request, ValueOf(request->get_session())));
      }
    });
    for (int i = 0; i < 2; ++i) {
      Run([this] {
        if (owed_statuses_.exchange(0) > 0) {
          application_.ReportStatus(kService, kInstance, kEvent, kAccepted);
        }
        application_.Deliver(NotificationOf(++number_));
        application_.TakeCalls();
      });
    }
    Run([this] {
      application_.ReportStatus(kService, kInstance, kEvent, ++number_ % 3 == 0 ? kRejected : kAccepted);
      application_.ReportAvailability(kService, kInstance, number_ % 5 != 0);
    });
  }
  ~Network() {
    stop_ = true;
    for (auto& thread : threads_) {
      thread.join();
    }
    application_.on_call = nullptr;
  }

 private:
  void Run(std::function<void()> round) {
    threads_.emplace_back([this, round = std::move(round)] {
      while (!stop_) {
        round();
        std::this_thread::yield();
      }
    });
  }

  RecordingApplication& application_;
  std::atomic<bool> stop_{false};
  std::atomic<int> owed_statuses_{0};
  std::atomic<unsigned> number_{0};
  std::vector<std::thread> threads_;
};

/// What a handler uses, and notices that it uses too late.
struct Alive {
  ~Alive() { value = false; }
  std::atomic<bool> value{true};
};

class StressTest : public ProxyTest {
 protected:
  template <typename Round>
  static std::thread Repeat(Round round) {
    return std::thread([round] {
      const auto end = std::chrono::steady_clock::now() + Duration();
      for (unsigned number = 0; number < 100 || std::chrono::steady_clock::now() < end; ++number) {
        round(number);
      }
    });
  }

  /// The life of a proxy, which ends while everything arrives.
  static void LiveAndGo(unsigned round) {
    auto alive = std::make_unique<Alive>();
    auto binding = std::make_unique<EnergySystemImpl>(kInstance);
    auto& field = binding->Getnotifications();
    auto& other = binding->GethighVoltageBatteries();
    field.SetReceiveHandler([&field, &other, alive = alive.get()] {
      EXPECT_TRUE(alive->value) << "a handler ran after its proxy was gone";
      field.GetNewSamples([](SamplePtr<const Value>) {});
      other.GetSubscriptionState();
    });
    field.SetSubscriptionStateChangeHandler([alive = alive.get()](SubscriptionState) { EXPECT_TRUE(alive->value); });
    field.Subscribe(1 + round % 4);
    other.Subscribe(1);
    auto future = field.Get();
    future.then([alive = alive.get()] { EXPECT_TRUE(alive->value); });
    if (round % 2 == 0) {
      future.wait();
    }
    if (round % 3 == 0) {
      field.Unsubscribe();
      field.Subscribe(2);
    }
    binding.reset();
    future = {};
  }

  /// The life of a proxy that a handler of its own ends.
  static void LiveUntilAHandlerEndsIt(unsigned round) {
    struct Application {
      std::unique_ptr<EnergySystemImpl> binding = std::make_unique<EnergySystemImpl>(kInstance);
      std::promise<void> gone;
    };
    const auto application = std::make_shared<Application>();
    auto gone = application->gone.get_future();
    auto& field = application->binding->Getnotifications();
    const auto end = [weak = std::weak_ptr<Application>(application)] {
      if (const auto self = weak.lock()) {
        self->binding.reset();
        self->gone.set_value();
      }
    };
    if (round % 2 == 0) {
      field.SetReceiveHandler(end);
    } else {
      field.SetSubscriptionStateChangeHandler([end](SubscriptionState state) {
        if (state == SubscriptionState::kSubscribed) {
          end();
        }
      });
    }
    field.Subscribe(1);
    gone.wait();
  }
};

TEST_F(StressTest, HundredsOfCallsFromSeveralThreadsCompleteOnceEach) {
  EnergySystemImpl one(kInstance);
  EnergySystemImpl other(kInstance);
  std::atomic<int> completed{0};
  std::mutex mutex;  // guards the futures, which stay: a continuation goes with its future
  std::deque<ara::core::Future<Value>> kept;
  {
    const Network network(application_);
    std::vector<std::thread> callers;
    for (EnergySystemImpl* const binding : {&one, &other, &one, &other}) {
      callers.emplace_back([&, binding] {
        for (int round = 0; round < 10; ++round) {
          std::vector<ara::core::Future<Value>> futures;
          for (int i = 0; i < 10; ++i) {
            futures.push_back(binding->Getnotifications().Get());
            futures.back().then([&] { ++completed; });
          }
          for (auto& future : futures) {
            EXPECT_TRUE(future.GetResult().HasValue());
          }
          const std::lock_guard<std::mutex> lock(mutex);
          std::move(futures.begin(), futures.end(), std::back_inserter(kept));
        }
      });
    }
    for (auto& caller : callers) {
      caller.join();
    }
  }
  EXPECT_EQ(completed, 400);
}

// The last event object of one kind goes while others come.
TEST_F(StressTest, EventsOfOneKindComeAndGo) {
  using ara::com::internal::vsomeip::proxy::EventSubscription;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.push_back(Repeat([](unsigned round) {
      const auto subscription = EventSubscription::Open({kService, 9, 4, 3, kEvent, kEvent, {kEvent}});
      if (round % 16 == 0) {
        subscription->Subscribe(1, nullptr, false);
      }
      subscription->Close();
    }));
  }
  for (auto& thread : threads) {
    thread.join();
  }
}

TEST_F(StressTest, EverythingAtOnce) {
  EnergySystemImpl shared(kInstance);
  auto& field = shared.Getnotifications();
  std::atomic<int> inHandler{0};
  std::atomic<int> seen{0};
  const auto receive = [&] {
    EXPECT_EQ(++inHandler, 1) << "calls of a receive handler overlap";
    field.GetNewSamples([&](SamplePtr<const Value>) { ++seen; });
    --inHandler;
  };
  field.SetSubscriptionStateChangeHandler([&](SubscriptionState) { field.GetFreeSampleCount(); });
  {
    const Network network(application_);
    std::array threads = {
        Repeat(LiveAndGo), Repeat(LiveUntilAHandlerEndsIt), Repeat([&](unsigned round) {
          field.SetReceiveHandler(receive);
          field.Subscribe(1 + round % 3);
          if (round % 7 == 0) {
            field.Unsubscribe();
          }
        }),
        Repeat([&](unsigned round) {
          std::vector<SamplePtr<const Value>> held;
          field.GetNewSamples([&](SamplePtr<const Value> sample) { held.push_back(std::move(sample)); });
          if (round % 11 == 0) {
            field.Subscribe(2);
          }
        })};
    for (auto& thread : threads) {
      thread.join();
    }
    // Whatever has happened: who subscribes now is subscribed, and receives.
    field.SetReceiveHandler(receive);
    field.Subscribe(1);
    const int before = seen;
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    while ((seen == before || !field.IsSubscribed()) && std::chrono::steady_clock::now() < end) {
      std::this_thread::yield();
    }
    EXPECT_GT(seen, before);
  }
}

}  // namespace
