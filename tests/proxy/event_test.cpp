#include "core_types/com_error_domain.h"
#include "tests/proxy/proxy_fixture.h"

namespace {

using namespace proxy_test;
using ara::com::SamplePtr;
using ara::com::SubscriptionState;
using ara::com::e2exf::ProfileCheckStatus;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class EventTest : public BoundProxyTest {
 protected:
  using Field = kro::services::energysystem::proxy::EnergySystemProxyBase::Field<Record>;

  std::vector<unsigned> Fetch(std::size_t most = 100) { return FetchFrom(field_, most); }
  static std::vector<unsigned> FetchFrom(Field& field, std::size_t most = 100) {
    std::vector<unsigned> numbers;
    const auto count =
        field.GetNewSamples([&](SamplePtr<const Value> sample) { numbers.push_back(*sample->at(0).member0); }, most);
    EXPECT_EQ(count.ValueOrThrow(), numbers.size());
    return numbers;
  }
  void Acknowledge() { application_.ReportStatus(kService, kInstance, kEvent, 0); }

  Field& field_ = binding_->Getnotifications();
};

TEST_F(EventTest, SubscribesAndUnsubscribesInOrder) {
  std::vector<SubscriptionState> states;
  field_.SetSubscriptionStateChangeHandler([&](SubscriptionState state) { states.push_back(state); });
  application_.TakeCalls();
  field_.Subscribe(3);
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("register_message_handler 6005 7 c010", "request_event 6005 7 c010 c010 1 0",
                          "register_subscription_status_handler 6005 7 c010 c010", "subscribe 6005 7 c010 4 c010",
                          "register_message_handler 6005 7 c010"));
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kSubscriptionPending);
  EXPECT_EQ(field_.GetFreeSampleCount(), 3U);
  Acknowledge();
  EXPECT_TRUE(field_.IsSubscribed());
  field_.Unsubscribe();
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("unregister_subscription_status_handler 6005 7 c010 c010", "unsubscribe 6005 7 c010",
                          "release_event 6005 7 c010", "unregister_message_handler 6005 7 c010"));
  EXPECT_THAT(states, ElementsAre(SubscriptionState::kSubscriptionPending, SubscriptionState::kSubscribed,
                                  SubscriptionState::kNotSubscribed));
}

TEST_F(EventTest, ACacheOfNothingIsRefused) {
  testing::internal::CaptureStderr();
  field_.Subscribe(0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("(Exception : proxy/vsomeip_event_impl.h) Subscribe() DoSubscribe error : "
                        "cache_size must be at least 1\n"));
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kNotSubscribed);
}

TEST_F(EventTest, AFailingStackLeavesItNotSubscribed) {
  application_.on_call = [](const std::string& call) {
    if (call.rfind("subscribe", 0) == 0) {
      throw std::runtime_error("no network");
    }
  };
  testing::internal::CaptureStderr();
  field_.Subscribe(1);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("DoSubscribe error : no network\n"));
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kNotSubscribed);
  application_.on_call = nullptr;
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  EXPECT_THAT(Fetch(), ElementsAre(1)) << "a later attempt works";
}

TEST_F(EventTest, DeliversOldestFirstAndDropsTheOldestWhenFull) {
  field_.Subscribe(2);
  for (const unsigned number : {1U, 2U, 3U}) {
    application_.Deliver(NotificationOf(number));
  }
  EXPECT_THAT(Fetch(1), ElementsAre(2));
  EXPECT_THAT(Fetch(), ElementsAre(3));
  EXPECT_THAT(Fetch(), ElementsAre());
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
  held.erase(held.begin());
  EXPECT_EQ(field_.GetNewSamples(hold).value(), 1U) << "what could not be delivered was kept";
  EXPECT_EQ(held.back()->at(0).member0, 3U);
}

TEST_F(EventTest, SamplesOutliveTheSubscriptionAndTheEvent) {
  auto doomed = std::make_unique<EnergySystemImpl>(8);
  auto& field = doomed->Getnotifications();
  SamplePtr<const Value> kept;
  field.Subscribe(1);
  application_.Deliver(support::Notification(kService, 8, kEvent, 4, ValueOf(1)));
  field.GetNewSamples([&](SamplePtr<const Value> sample) { kept = std::move(sample); });
  field.Unsubscribe();
  field.Subscribe(1);
  EXPECT_EQ(field.GetFreeSampleCount(), 1U) << "a new subscription has a cache of its own";
  application_.Deliver(support::Notification(kService, 8, kEvent, 4, ValueOf(2)));
  EXPECT_THAT(FetchFrom(field), ElementsAre(2));
  doomed.reset();
  EXPECT_EQ(kept->at(0).member0, 1U);
}

TEST_F(EventTest, ReportsTheCheckOfEachMessageAndOfNone) {
  field_.Subscribe(3);
  EXPECT_THAT(Fetch(), ElementsAre());
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kNoNewData);
  const auto damaged = NotificationOf(1);
  damaged->set_check_result(0);
  application_.Deliver(damaged);
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kNoNewData) << "only taking a message counts";
  ProfileCheckStatus status = ProfileCheckStatus::kOk;
  field_.GetNewSamples([&](SamplePtr<const Value> sample) { status = sample.GetProfileCheckStatus(); });
  EXPECT_EQ(status, damaged->is_valid_crc() ? ProfileCheckStatus::kOk : ProfileCheckStatus::kError);
  EXPECT_EQ(field_.DoCheckResult().status, status);
  application_.Deliver(NotificationOf(2));
  Fetch();
  EXPECT_EQ(field_.DoCheckResult().status, ProfileCheckStatus::kOk);
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
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Incorrect client id: '5', should be 0\n"));
  for (const auto& message : {wrongVersion, wrongType}) {
    testing::internal::CaptureStderr();
    application_.Deliver(message);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Discarding invalid message\n"));
  }
  EXPECT_THAT(Fetch(), ElementsAre());
}

TEST_F(EventTest, GoesOnAfterAnUndecodableMessage) {
  field_.Subscribe(5);
  application_.Deliver(NotificationOf(1));
  application_.Deliver(support::Notification(kService, kInstance, kEvent, 4, "000000"));
  application_.Deliver(NotificationOf(3));
  testing::internal::CaptureStderr();
  EXPECT_THAT(Fetch(), ElementsAre(1, 3));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("(Exception : proxy/vsomeip_event_impl.h) GetNewSamples() deserializer error : "
                        "Deserialization of ara::core::Vector<T> failed, insufficient data.\n"));
  EXPECT_EQ(field_.GetFreeSampleCount(), 5U) << "its slot went back";
}

TEST_F(EventTest, CallsTheReceiveHandlerUntilItIsTakenBack) {
  int calls = 0;
  field_.SetReceiveHandler([&] {
    ++calls;
    Fetch();  // may call back
  });
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  field_.UnsetReceiveHandler();
  application_.Deliver(NotificationOf(2));
  EXPECT_EQ(calls, 1);
  EXPECT_THAT(Fetch(), ElementsAre(2));
}

TEST_F(EventTest, BothEdgesOfALostServiceAreReported) {
  field_.Subscribe(1);
  Acknowledge();
  std::vector<SubscriptionState> states;
  field_.SetSubscriptionStateChangeHandler([&](SubscriptionState state) { states.push_back(state); });
  application_.ReportAvailability(kService, kInstance, true);
  application_.ReportAvailability(kService, kInstance, false);
  application_.ReportAvailability(kService, kInstance, true);
  Acknowledge();
  EXPECT_THAT(states, ElementsAre(SubscriptionState::kSubscriptionPending, SubscriptionState::kSubscribed));
  application_.ReportStatus(kService, kInstance, kEvent, 7);
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kNotSubscribed);
}

TEST_F(EventTest, TwoBindingsOfOneInstanceShareASubscription) {
  EnergySystemImpl other(kInstance);
  auto& otherField = other.Getnotifications();
  field_.Subscribe(2);
  Acknowledge();
  application_.Deliver(NotificationOf(1));
  application_.TakeCalls();

  int received = 0;
  std::vector<SubscriptionState> states;
  otherField.SetReceiveHandler([&] { ++received; });
  otherField.SetSubscriptionStateChangeHandler([&](SubscriptionState state) { states.push_back(state); });
  otherField.Subscribe(2);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
  EXPECT_THAT(states, ElementsAre(SubscriptionState::kSubscriptionPending, SubscriptionState::kSubscribed));
  EXPECT_EQ(received, 1) << "the value as it stands comes at once";
  application_.Deliver(NotificationOf(2));
  field_.Unsubscribe();
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "the other one goes on";
  application_.Deliver(NotificationOf(3));
  EXPECT_THAT(FetchFrom(otherField), ElementsAre(2, 3));
  EXPECT_THAT(Fetch(), ElementsAre());
}

TEST_F(EventTest, AHandlerMayEndItsOwnSubscription) {
  field_.SetReceiveHandler([&] { field_.Unsubscribe(); });
  field_.Subscribe(1);
  application_.Deliver(NotificationOf(1));
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kNotSubscribed);

  field_.SetSubscriptionStateChangeHandler([&](SubscriptionState state) {
    if (state == SubscriptionState::kSubscriptionPending) {
      field_.Unsubscribe();
    }
  });
  application_.TakeCalls();
  field_.Subscribe(1);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
  EXPECT_EQ(field_.GetSubscriptionState(), SubscriptionState::kNotSubscribed);
}

}  // namespace
