#include <atomic>
#include <thread>

#include "core_types/com_error_domain.h"
#include "tests/proxy/proxy_fixture.h"

namespace {

using namespace proxy_test;
using ara::com::SamplePtr;
using ara::com::SubscriptionState;

class ConcurrencyTest : public ProxyTest {
 protected:
  /// Answers every request and notifies without pause, on threads of its own, until it is destroyed.
  class Network {
   public:
    explicit Network(RecordingApplication& application) : application_(application) {
      responder_ = std::thread([this] {
        while (!stop_) {
          for (const auto& request : application_.TakeSent()) {
            application_.Deliver(support::ResponseTo(request, ValueOf(request->get_session())));
          }
          std::this_thread::yield();
        }
      });
      notifier_ = std::thread([this] {
        for (unsigned number = 0; !stop_; ++number) {
          application_.Deliver(NotificationOf(number));
          application_.ReportStatus(kService, kInstance, kEvent, static_cast<std::uint16_t>(number % 3));
          application_.ReportAvailability(kService, kInstance, number % 5 != 0);
        }
      });
    }
    ~Network() {
      stop_ = true;
      responder_.join();
      notifier_.join();
    }

   private:
    RecordingApplication& application_;
    std::atomic<bool> stop_{false};
    std::thread responder_;
    std::thread notifier_;
  };
};

TEST_F(ConcurrencyTest, HundredsOfCallsFromSeveralThreadsCompleteOnceEach) {
  EnergySystemImpl one(kInstance);
  EnergySystemImpl other(kInstance);
  std::atomic<int> completed{0};
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
        }
      });
    }
    for (auto& caller : callers) {
      caller.join();
    }
  }
  EXPECT_EQ(completed, 400);
}

TEST_F(ConcurrencyTest, BindingsMayGoWhileEverythingArrives) {
  const Network network(application_);
  for (int round = 0; round < 200; ++round) {
    auto binding = std::make_unique<EnergySystemImpl>(kInstance);
    auto& field = binding->Getnotifications();
    auto alive = std::make_unique<std::atomic<bool>>(true);
    std::atomic<int> seen{0};
    field.SetReceiveHandler([&, alive = alive.get()] {
      EXPECT_TRUE(*alive) << "a handler ran after its proxy was gone";
      field.GetNewSamples([&](SamplePtr<const Value>) { ++seen; });
    });
    field.SetSubscriptionStateChangeHandler([alive = alive.get()](SubscriptionState) { EXPECT_TRUE(*alive); });
    field.Subscribe(4);
    auto future = field.Get();
    future.then([alive = alive.get()] { EXPECT_TRUE(*alive); });
    if (round % 2 == 0) {
      future.wait();
    }
    if (round % 3 == 0) {
      field.Unsubscribe();
    }
    binding.reset();
    future = {};
    alive.reset();
  }
}

}  // namespace
