#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include "core_types/com_error_domain.h"
#include "core_types/future_error_domain.h"
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

/// A binding that does as it is told when it is asked for a call.
struct ToldBinding : ara::com::internal::vsomeip::skeleton::ServiceImplBase {
  explicit ToldBinding(ara::com::internal::skeleton::ServiceBase& service) : ServiceImplBase(service, kInstance) {}
  ara::core::Future<bool> ProcessNextMethodCall() override { return told(); }
  std::function<ara::core::Future<bool>()> told;
};

TEST_F(ProcessingModeTest, ASkeletonThrowsTheErrorOfItsBinding) {
  ToldBinding binding(*skeleton_);
  skeleton_->Attach(binding);
  binding.told = [] {
    ara::core::Promise<bool> promise;
    promise.SetError(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
    return promise.get_future();
  };
  EXPECT_THROW(Process(*skeleton_), ara::com::ComErrorDomainException);
  skeleton_->Detach(binding);
}

TEST_F(ProcessingModeTest, WhoDetachesABindingWaitsForCallsOfIt) {
  ToldBinding binding(*skeleton_);
  skeleton_->Attach(binding);
  std::promise<void> entered;
  std::promise<void> detached;
  binding.told = [&] {
    entered.set_value();
    EXPECT_EQ(detached.get_future().wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    ara::core::Promise<bool> promise;
    promise.SetResult(true);
    return promise.get_future();
  };
  std::thread caller([this] { EXPECT_TRUE(Process(*skeleton_)); });
  entered.get_future().wait();
  skeleton_->Detach(binding);
  detached.set_value();
  caller.join();

  // But not for one that runs on the same thread.
  skeleton_->Attach(binding);
  binding.told = [&] {
    skeleton_->Detach(binding);
    return ara::core::Future<bool>();
  };
  EXPECT_THROW(Process(*skeleton_), ara::core::FutureException);
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
