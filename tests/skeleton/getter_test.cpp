#include <atomic>
#include <future>
#include <thread>

#include "core_types/com_error_domain.h"
#include "tests/skeleton/skeleton_fixture.h"
#include "tests/support/hex.h"

namespace {

using namespace skeleton_test;
using ara::core::Future;
using ara::core::Promise;
using ::vsomeip::message_type_e;

class GetterTest : public SkeletonTest {
 protected:
  void SetUp() override {
    SetAllFields(*skeleton_);
    skeleton_->OfferService();
    SkeletonTest::SetUp();
  }

  /// The answer to a request; null when there was none.
  Message AnswerTo(const Message& request) {
    application_.Deliver(request);
    const auto sent = application_.TakeSent();
    EXPECT_LE(sent.size(), 1U);
    return sent.empty() ? nullptr : sent.front();
  }
  static void ExpectError(const Message& answer, const char* code) {
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->get_message_type(), message_type_e::MT_ERROR);
    EXPECT_NE(answer->get_return_code(), ::vsomeip::return_code_e::E_OK);
    EXPECT_EQ(PayloadOf(answer), support::Bytes(code));
  }
  static std::vector<unsigned char> PayloadOf(const Message& message) {
    const auto payload = message->get_payload();
    return {payload->get_data(), payload->get_data() + payload->get_length()};
  }

  static constexpr const char* kBindingFailure = "00000013 01 0010 8000000000001267 00000003 00000000";
};

TEST_F(GetterTest, AnswersWithWhatTheHandlerYields) {
  skeleton_->rwmStatus.ServeCurrentValue();
  const auto answer = AnswerTo(RequestTo(0x4010));
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->get_message_type(), message_type_e::MT_RESPONSE);
  EXPECT_EQ(PayloadOf(answer), support::Bytes("0000000a 00000006 2000 00000001"));
  skeleton_->rwmStatus.Update({});
  EXPECT_EQ(PayloadOf(AnswerTo(RequestTo(0x4010))), support::Bytes("00000000")) << "the value as it stands";

  skeleton_->rwmStatus.RegisterGetHandler([] {
    Promise<Status> promise;
    promise.SetError(ara::core::ErrorCode(1, 5, ara::com::GetComErrorDomain()));
    return promise.get_future();
  });
  ExpectError(AnswerTo(RequestTo(0x4010)), "00000013 01 0010 8000000000001267 00000001 00000005");
}

TEST_F(GetterTest, DropsInvalidRequestsWithoutAnAnswer) {
  skeleton_->rwmStatus.ServeCurrentValue();
  const auto wrongVersion = RequestTo(0x4010);
  wrongVersion->set_interface_version(2);
  const auto notification = RequestTo(0x4010);
  notification->set_message_type(message_type_e::MT_NOTIFICATION);
  for (const auto& request : {wrongVersion, notification}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(AnswerTo(request), nullptr);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("skeleton/vsomeip_field_impl:handleGet:161: Discarding invalid message\n"));
  }
}

TEST_F(GetterTest, AMissingOrThrowingHandlerIsAnErrorResponse) {
  testing::internal::CaptureStderr();
  ExpectError(AnswerTo(RequestTo(0x4040)), kBindingFailure);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("No Get handler registered!\n"));
  skeleton_->destinations.RegisterGetHandler(
      []() -> Future<std::vector<DT_destinations_struct>> { throw std::runtime_error("no route"); });
  testing::internal::CaptureStderr();
  ExpectError(AnswerTo(RequestTo(0x4040)), kBindingFailure);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("no route\n"));

  using namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip;
  const ara::com::internal::vsomeip::skeleton::FieldImpl<Status, descriptors::rwmStatus> field(kInstance);
  EXPECT_THROW(field.handleGet(RequestTo(0x4010)), ara::com::IllegalStateException);
}

TEST_F(GetterTest, AFutureThatBecomesReadyLaterIsAnsweredThen) {
  Promise<Status> promise;
  skeleton_->rwmStatus.RegisterGetHandler([&] { return promise.get_future(); });
  EXPECT_EQ(AnswerTo(RequestTo(0x4010)), nullptr);
  promise.SetResult(StatusOf(3));
  const auto sent = application_.TakeSent();
  ASSERT_EQ(sent.size(), 1U);
  EXPECT_EQ(PayloadOf(sent[0]), support::Bytes("0000000a 00000006 2000 00000003"));
}

TEST_F(GetterTest, AFutureThatIsNeverReadyHoldsNothingUp) {
  std::vector<Promise<Status>> promises;
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    promises.emplace_back();
    return promises.back().get_future();
  });
  skeleton_->targetSocChargings.ServeCurrentValue();
  testing::internal::CaptureStderr();
  std::size_t refused = 0;
  for (int i = 0; i < 1030; ++i) {
    refused += AnswerTo(RequestTo(0x4010)) != nullptr ? 1U : 0U;
  }
  EXPECT_EQ(refused, 6U) << "what waits is bounded";
  testing::internal::GetCapturedStderr();
  EXPECT_NE(AnswerTo(RequestTo(0x4050)), nullptr) << "other getters go on";
  skeleton_.reset();
  promises[0].SetResult(StatusOf(1));
  EXPECT_TRUE(application_.TakeSent().empty()) << "nobody answers for a skeleton that is gone";
}

TEST_F(GetterTest, ANewHandlerReachesARunningOffer) {
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->StopOfferService();
  skeleton_->OfferService();
  EXPECT_EQ(AnswerTo(RequestTo(0x4010))->get_message_type(), message_type_e::MT_RESPONSE) << "kept from offer to offer";
}

TEST_F(GetterTest, DestructionWaitsForARunningHandler) {
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> ended{false};
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    entered.set_value();
    leave.get_future().wait();
    ended = true;
    Promise<Status> promise;
    promise.SetResult(Status());
    return promise.get_future();
  });
  std::thread network([this] { application_.Deliver(RequestTo(0x4010)); });
  entered.get_future().wait();
  std::thread owner([&] {
    skeleton_.reset();
    EXPECT_TRUE(ended);
  });
  leave.set_value();
  owner.join();
  network.join();
}

// Requests, updates and new handlers while offers come and go.
TEST_F(GetterTest, EverythingMayHappenAtOnce) {
  std::atomic<bool> stop{false};
  skeleton_->rwmStatus.ServeCurrentValue();
  std::vector<std::thread> threads;
  threads.emplace_back([&] {
    while (!stop) {
      application_.Deliver(RequestTo(0x4010));
      application_.TakeSent();
    }
  });
  threads.emplace_back([&] {
    for (unsigned number = 0; !stop; ++number) {
      skeleton_->rwmStatus.Update(StatusOf(number));
      application_.TakeCalls();
    }
  });
  threads.emplace_back([&] {
    while (!stop) {
      skeleton_->rwmStatus.ServeCurrentValue();
    }
  });
  for (int round = 0; round < 100; ++round) {
    skeleton_->StopOfferService();
    skeleton_->OfferService();
  }
  stop = true;
  for (auto& thread : threads) {
    thread.join();
  }
}

}  // namespace
