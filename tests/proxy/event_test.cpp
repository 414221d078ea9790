#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "core_types/com_error_domain.h"
#include "tests/proxy/proxy_fixture.h"

// One event object: its subscription at the stack, its cache, its samples.
namespace {

using namespace proxy_test;
using ara::com::e2exf::ProfileCheckStatus;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using State = SubscriptionState;

const std::vector<std::string> kSubscribing = {"register_message_handler 6005 7 c010",
                                               "request_event 6005 7 c010 c010 1 0",
                                               "register_subscription_status_handler 6005 7 c010 c010",
                                               "subscribe 6005 7 c010 4 c010", "register_message_handler 6005 7 c010"};

// Before the library makes its logger: what it says at that level is tested, too.
const int kLogLevel = setenv("TARN7_LOG_LEVEL", "info", 1);

class EventTest : public BoundProxyTest {
 protected:
  void FollowStates() {
    field_.SetSubscriptionStateChangeHandler([this](State state) { states_.push_back(state); });
  }

  std::vector<State> states_;
};

TEST_F(EventTest, SubscribesAndUnsubscribesInOrder) {
  FollowStates();
  application_.TakeCalls();
  field_.Subscribe(3);
  EXPECT_THAT(application_.TakeCalls(), ElementsAreArray(kSubscribing));
  EXPECT_EQ(field_.GetSubscriptionState(), State::kSubscriptionPending);
  EXPECT_EQ(field_.GetFreeSampleCount(), 3U);
  Report(kAccepted);
  EXPECT_TRUE(field_.IsSubscribed());
  field_.Unsubscribe();
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("unregister_subscription_status_handler 6005 7 c010 c010", "unsubscribe 6005 7 c010",
                          "release_event 6005 7 c010", "unregister_message_handler 6005 7 c010"));
  EXPECT_THAT(states_, ElementsAre(State::kSubscriptionPending, State::kSubscribed, State::kNotSubscribed));
}

TEST_F(EventTest, SubscribingOnceMoreAsksTheStackAgain) {
  FollowStates();
  for (const std::uint16_t answer : {kRejected, kAccepted, kAccepted}) {
    application_.TakeCalls();
    field_.Subscribe(1);
    EXPECT_THAT(application_.TakeCalls(), ElementsAreArray(kSubscribing));
    Report(answer);
  }
  EXPECT_THAT(states_, ElementsAre(State::kSubscriptionPending, State::kNotSubscribed, State::kSubscriptionPending,
                                   State::kSubscribed, State::kSubscriptionPending, State::kSubscribed));
}

// The stack goes on asking a provider that has refused. What such a provider sends is taken, also before it is said
// that it accepts now.
TEST_F(EventTest, ARejectedSubscriptionIsNotSubscribedButStillTakesPart) {
  field_.Subscribe(2);
  Report(kRejected);
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
  application_.Deliver(NotificationOf(1));
  EXPECT_THAT(Fetch(field_), ElementsAre(1));
  Report(kAccepted);
  EXPECT_TRUE(field_.IsSubscribed());
}

TEST_F(EventTest, EveryStatusReachesTheStateHandlerAndBothEdgesOfALoss) {
  field_.Subscribe(1);
  Report(kAccepted);
  FollowStates();
  Report(kAccepted);
  application_.ReportAvailability(kService, kInstance, true);
  application_.ReportAvailability(kService, kInstance, false);
  application_.ReportAvailability(kService, kInstance, false);
  application_.ReportAvailability(kService, kInstance, true);
  Report(kAccepted);
  EXPECT_THAT(states_, ElementsAre(State::kSubscribed, State::kSubscriptionPending, State::kSubscribed));
}

TEST_F(EventTest, ACacheOfNothingIsRefused) {
  testing::internal::CaptureStderr();
  field_.Subscribe(0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("(Exception : proxy/vsomeip_event_impl.h) Subscribe() DoSubscribe error : "
                        "cache_size must be at least 1\n"));
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
}

TEST_F(EventTest, AFailingStackLeavesItNotSubscribedAndNothingRegistered) {
  FollowStates();
  const auto before = application_.CountLeftovers();
  for (const char* const failing :
       {"register_message_handler", "request_event", "register_subscription_status_handler", "subscribe"}) {
    application_.on_call = [failing](const std::string& call) {
      if (call.rfind(failing, 0) == 0) {
        throw std::runtime_error("no network");
      }
    };
    states_.clear();
    testing::internal::CaptureStderr();
    field_.Subscribe(1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("DoSubscribe error : no network\n")) << failing;
    EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed) << failing;
    EXPECT_THAT(states_, ElementsAre(State::kSubscriptionPending, State::kNotSubscribed)) << failing;
    EXPECT_EQ(application_.CountLeftovers(), before) << failing;
  }
  application_.on_call = nullptr;
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  EXPECT_THAT(Fetch(field_), ElementsAre(1)) << "a later attempt works";
}

TEST_F(EventTest, AStackThatFailsToEndASubscriptionIsToldTheRest) {
  for (const char* const failing : {"unregister_subscription", "unsubscribe", "release", "unregister_message"}) {
    field_.Subscribe(1);
    application_.TakeCalls();
    application_.on_call = [failing](const std::string& call) {
      if (call.rfind(failing, 0) == 0) {
        throw std::runtime_error("no network");
      }
    };
    testing::internal::CaptureStderr();
    field_.Unsubscribe();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("fails to end a subscription: no network\n"));
    EXPECT_EQ(application_.TakeCalls().size(), 3U) << failing;
    EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
    application_.on_call = nullptr;
  }
  field_.Subscribe(1);
  field_.Unsubscribe();
}

TEST_F(EventTest, DeliversOldestFirstAndDropsTheOldestWhenFull) {
  field_.Subscribe(3);
  for (const unsigned number : {1U, 2U, 3U, 4U}) {
    application_.Deliver(NotificationOf(number));
  }
  EXPECT_THAT(Fetch(field_, 1), ElementsAre(2));
  application_.Deliver(NotificationOf(5));
  field_.Subscribe(2);
  EXPECT_THAT(Fetch(field_), ElementsAre(4, 5)) << "a smaller cache drops its oldest, too";
  EXPECT_THAT(Fetch(field_), ElementsAre());
  application_.Deliver(NotificationOf(6));
  testing::internal::CaptureStderr();
  field_.Unsubscribe();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("2 notifications of event 49168 were dropped: the cache was full\n"));
  field_.Subscribe(1);
  EXPECT_THAT(Fetch(field_), ElementsAre()) << "what was not fetched went with its subscription";
}

TEST_F(EventTest, HeldSamplesBoundWhatCanBeDelivered) {
  field_.Subscribe(2);
  std::vector<SamplePtr<const Value>> held;
  const auto hold = [&](SamplePtr<const Value> sample) { held.push_back(std::move(sample)); };
  application_.Deliver(NotificationOf(1));
  EXPECT_EQ(field_.GetNewSamples(hold).value(), 1U);
  application_.Deliver(NotificationOf(2));
  application_.Deliver(NotificationOf(3));
  EXPECT_EQ(field_.GetNewSamples(hold).value(), 1U) << "one slot was free";
  EXPECT_EQ(field_.GetFreeSampleCount(), 0U);
  EXPECT_EQ(field_.GetNewSamples(hold).error(), MakeErrorCode(ara::com::ComErrc::kMaxSamplesExceeded));
  for (unsigned number = 3; number < 8; ++number) {  // slots go round
    held.erase(held.begin());
    EXPECT_EQ(field_.GetNewSamples(hold).value(), 1U) << "what could not be delivered was kept";
    EXPECT_EQ(held.front()->at(0).member0, number - 1);
    EXPECT_EQ(held.back()->at(0).member0, number);
    application_.Deliver(NotificationOf(number + 1));
  }
}

TEST_F(EventTest, SamplesOutliveTheSubscriptionAndTheEvent) {
  SamplePtr<const Value> kept;
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  field_.GetNewSamples([&](SamplePtr<const Value> sample) { kept = std::move(sample); });
  field_.Unsubscribe();
  field_.Subscribe(1);
  EXPECT_EQ(field_.GetFreeSampleCount(), 1U) << "a new subscription has a cache of its own";
  application_.Deliver(NotificationOf(2));
  EXPECT_THAT(Fetch(field_), ElementsAre(2));
  binding_.reset();
  EXPECT_EQ(kept->at(0).member0, 1U);
}

TEST_F(EventTest, ReportsTheCheckOfEachMessageAndOfNone) {
  EXPECT_EQ(field_.GetFreeSampleCount(), 0U);
  EXPECT_THAT(Fetch(field_), ElementsAre()) << "never subscribed";
  field_.Subscribe(3);
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kNoNewData);
  const auto damaged = NotificationOf(1);
  damaged->set_check_result(1);
  application_.Deliver(damaged);
  application_.Deliver(NotificationOf(2));
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kNoNewData) << "only taking a message counts";
  for (const auto wanted : {ProfileCheckStatus::kError, ProfileCheckStatus::kOk}) {
    auto status = ProfileCheckStatus::kNotAvailable;
    field_.GetNewSamples([&](SamplePtr<const Value> sample) { status = sample.GetProfileCheckStatus(); }, 1);
    EXPECT_EQ(status, wanted);
    EXPECT_EQ(field_.DoCheckResult().status, wanted);
  }
  Fetch(field_);
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kNoNewData);
}

TEST_F(EventTest, RefusesWhatIsNoNotificationOfThisEvent) {
  field_.Subscribe(5);
  const auto foreignClient = NotificationOf(1);
  foreignClient->set_client(5);
  const auto wrongVersion = NotificationOf(2);
  wrongVersion->set_interface_version(3);
  const auto wrongType = NotificationOf(3);
  wrongType->set_message_type(::vsomeip::message_type_e::MT_RESPONSE);
  testing::internal::CaptureStderr();
  application_.Deliver(foreignClient);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              ::testing::AllOf(HasSubstr("Incorrect client id: '5', should be 0\n"),
                               HasSubstr("Discarding invalid message\n")));
  for (const auto& message : {wrongVersion, wrongType}) {
    testing::internal::CaptureStderr();
    application_.Deliver(message);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Discarding invalid message\n"));
  }
  testing::internal::CaptureStderr();
  for (int i = 0; i < 1000; ++i) {
    application_.Deliver(wrongType);
    application_.Deliver(foreignClient);
  }
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_LT(std::count(log.begin(), log.end(), '\n'), 100) << "a peer does not fill the log";
  const auto returnCode = NotificationOf(4);  // says nothing in a notification
  returnCode->set_return_code(::vsomeip::return_code_e::E_NOT_OK);
  application_.Deliver(returnCode);
  EXPECT_THAT(Fetch(field_), ElementsAre(4));
}

TEST_F(EventTest, GoesOnAfterAnUndecodableMessage) {
  field_.Subscribe(5);
  application_.Deliver(NotificationOf(1));
  application_.Deliver(support::Notification(kService, kInstance, kEvent, 4, "000000"));
  application_.Deliver(NotificationOf(3));
  testing::internal::CaptureStderr();
  EXPECT_THAT(Fetch(field_), ElementsAre(1, 3));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("(Exception : proxy/vsomeip_event_impl.h) GetNewSamples() deserializer error : "
                        "Deserialization of ara::core::Vector<T> failed, insufficient data.\n"));
  EXPECT_EQ(field_.GetFreeSampleCount(), 5U) << "its slot went back";
}

// A stack looks the handler up when something arrives, and calls it later.
TEST_F(EventTest, WhatTheStackHadQueuedForAnEarlierSubscriptionIsDropped) {
  field_.Subscribe(1);
  const auto message = application_.Arrive(NotificationOf(1));
  const auto accepted = application_.ArriveStatus(kService, kInstance, kEvent, kAccepted);
  const auto lost = application_.ArriveAvailability(kService, kInstance, false);
  field_.Unsubscribe();
  message();
  accepted();
  EXPECT_EQ(field_.GetSubscriptionState(), State::kNotSubscribed);
  field_.Subscribe(1);
  message();
  accepted();
  EXPECT_EQ(field_.GetSubscriptionState(), State::kSubscriptionPending);
  EXPECT_THAT(Fetch(field_), ElementsAre());
  Report(kAccepted);
  lost();
  EXPECT_TRUE(field_.IsSubscribed());
  binding_.reset();
  message();
  accepted();
  lost();
}

// An event outside of a binding stops its own handlers; and no event leaves anything behind.
TEST_F(EventTest, AnEventThatGoesCallsNobodyAndLeavesNothing) {
  using namespace kro::services::energysystem::energysystem_binding::vsomeip;
  using Event = ara::com::internal::vsomeip::proxy::EventImpl<descriptors::notifications, Value>;
  auto event = std::make_unique<Event>(8);
  event->SetSubscriptionStateChangeHandler([this](State state) { states_.push_back(state); });
  event->Subscribe(1);
  event.reset();
  EXPECT_THAT(states_, ElementsAre(State::kSubscriptionPending));

  using ara::com::internal::vsomeip::proxy::EventSubscription;
  auto subscription = EventSubscription::Open({kService, 8, 4, 3, kEvent, kEvent, {kEvent}});
  const std::weak_ptr<EventSubscription> weak = subscription;
  subscription->Close();
  subscription.reset();
  EXPECT_TRUE(weak.expired());
}

// A slow stack holds up who subscribes, and nobody else.
TEST_F(EventTest, ASubscriptionUnderWayStallsNoOtherField) {
  std::promise<void> entered;
  std::promise<void> go;
  application_.on_call = [&](const std::string& call) {
    if (call == "subscribe 6005 7 c010 4 c010") {
      entered.set_value();
      go.get_future().wait();
    }
  };
  std::thread slow([&] { field_.Subscribe(1); });
  entered.get_future().wait();
  EXPECT_EQ(field_.GetSubscriptionState(), State::kSubscriptionPending);
  application_.Deliver(NotificationOf(1));
  EnergySystemImpl other(8);
  other.Getnotifications().Subscribe(1);
  binding_->GetlowVoltageBatteries().Subscribe(1);
  binding_->GetlowVoltageBatteries().Unsubscribe();
  go.set_value();
  slow.join();
}

}  // namespace
