#include "tests/skeleton/skeleton_fixture.h"

namespace {

using namespace skeleton_test;
using ara::com::MethodCallProcessingMode;

/// A binding whose queue a test can fill.
class Binding final : public ara::com::internal::vsomeip::skeleton::ServiceImplBase {
 public:
  explicit Binding(ara::com::internal::skeleton::ServiceBase& service) : ServiceImplBase(service, kInstance) {}

  using ServiceImplBase::DispatchMethodCall;
};

class ProcessingModeTest : public SkeletonTest {
 protected:
  void Dispatch(Binding& binding, int call) {
    binding.DispatchMethodCall([this, call] { calls_.push_back(call); });
  }
  static bool Process(ara::com::internal::skeleton::ServiceImplBase& service) {
    return service.ProcessNextMethodCall().get();
  }

  std::vector<int> calls_;
};

TEST_F(ProcessingModeTest, PolledCallsRunOneByOne) {
  Binding binding(*skeleton_);
  Dispatch(binding, 1);
  EXPECT_THAT(calls_, ElementsAre(1)) << "at once unless polled";
  binding.SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  EXPECT_FALSE(Process(binding));
  Dispatch(binding, 2);
  EXPECT_THAT(calls_, ElementsAre(1));
  EXPECT_TRUE(Process(binding));
  EXPECT_FALSE(Process(binding));
  EXPECT_THAT(calls_, ElementsAre(1, 2));
}

TEST_F(ProcessingModeTest, LeavingPollRunsWhatWaits) {
  Binding binding(*skeleton_);
  binding.SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  for (const int call : {1, 2, 3}) {
    Dispatch(binding, call);
  }
  binding.SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  EXPECT_THAT(calls_, ElementsAre());
  binding.SetMethodCallProcessingMode(MethodCallProcessingMode::kEventSingleThread);
  EXPECT_THAT(calls_, ElementsAre(1, 2, 3));
  try {
    Process(binding);
    ADD_FAILURE() << "there is nothing to poll";
  } catch (const ara::com::IllegalStateException& error) {
    EXPECT_STREQ(error.what(), "ProcessNextMethodCall() called in non-polling mode!");
  }
}

TEST_F(ProcessingModeTest, ASkeletonAsksItsBindingsInOrder) {
  EXPECT_FALSE(Process(*skeleton_)) << "no binding, no call";
  skeleton_->SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  Binding one(*skeleton_);
  Binding other(*skeleton_);
  skeleton_->Attach(one);
  skeleton_->Attach(other);
  skeleton_->SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  Dispatch(other, 2);
  Dispatch(one, 1);
  EXPECT_TRUE(Process(*skeleton_));
  EXPECT_THAT(calls_, ElementsAre(1)) << "it stops at the first that had a call";
  EXPECT_TRUE(Process(*skeleton_));
  EXPECT_FALSE(Process(*skeleton_));
  EXPECT_THAT(calls_, ElementsAre(1, 2));
  skeleton_->Detach(one);
  skeleton_->Detach(other);
}

TEST_F(ProcessingModeTest, GettersAreAnsweredAtOnceInEveryMode) {
  SetAllFields(*skeleton_);
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->SetMethodCallProcessingMode(MethodCallProcessingMode::kPoll);
  skeleton_->OfferService();
  application_.Deliver(RequestTo(0x4010));
  EXPECT_EQ(application_.TakeSent().size(), 1U);
  EXPECT_FALSE(Process(*skeleton_)) << "the adapter has taken the mode over, and its queue is empty";
}

}  // namespace
