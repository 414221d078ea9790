#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <thread>

#include "core_types/com_error_domain.h"
#include "interfaces/psd2/psd2_descriptors.h"
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

TEST_F(GetterTest, AResponseHasTheBytesOfTheNotification) {
  skeleton_->rwmStatus.ServeCurrentValue();
  std::vector<unsigned char> notified;
  application_.on_notify = [&](const ::vsomeip::payload& payload) {
    notified.assign(payload.get_data(), payload.get_data() + payload.get_length());
  };
  auto value = StatusOf(0x01020304);
  value.push_back({});
  skeleton_->rwmStatus.Update(value);
  EXPECT_EQ(notified, support::Bytes("0000000e 00000006 2000 01020304 00000000"));
  EXPECT_EQ(PayloadOf(AnswerTo(RequestTo(0x4010))), notified);
}

// An interface's getters ask for its own major version.
TEST_F(GetterTest, ThoseOfPsd2AreOfVersionSix) {
  using kro::services::psd2::psd2_binding::vsomeip::descriptors::Interface;
  kro::services::psd2::skeleton::Psd2Skeleton map({ara::com::InstanceIdentifier("7")});
  ara::com::internal::vsomeip::common::ForEachType(Interface::Fields{}, [&](auto field) {
    auto& member = map.*decltype(field)::skeleton_field;
    member.Update({});
    member.ServeCurrentValue();
  });
  map.OfferService();
  application_.TakeSent();
  const auto request = RequestTo(0x4030);
  request->set_service(0x6122);
  testing::internal::CaptureStderr();
  EXPECT_EQ(AnswerTo(request), nullptr) << "of version 1";
  testing::internal::GetCapturedStderr();
  request->set_interface_version(6);
  const auto answer = AnswerTo(request);
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->get_message_type(), message_type_e::MT_RESPONSE);
  EXPECT_EQ(answer->get_interface_version(), 6);
}

TEST_F(GetterTest, DropsInvalidRequestsWithoutAnAnswer) {
  skeleton_->rwmStatus.ServeCurrentValue();
  const auto wrongVersion = RequestTo(0x4010);
  wrongVersion->set_interface_version(2);
  const auto notification = RequestTo(0x4010);
  notification->set_message_type(message_type_e::MT_NOTIFICATION);
  const auto failed = RequestTo(0x4010);
  failed->set_return_code(::vsomeip::return_code_e::E_NOT_OK);
  for (const auto& request : {wrongVersion, notification, failed}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(AnswerTo(request), nullptr);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("skeleton/vsomeip_field_impl:handleGet:161: Discarding invalid message\n"));
  }
  const auto other = RequestTo(0x4050);  // a field whose log no test looks into
  other->set_interface_version(2);
  testing::internal::CaptureStderr();
  for (int i = 0; i < 1000; ++i) {
    AnswerTo(other);
    AnswerTo(RequestTo(0x4050));  // which has no handler
  }
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_LT(std::count(log.begin(), log.end(), '\n'), 100) << "a peer does not fill the log";
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
  ara::com::internal::vsomeip::skeleton::FieldImpl<Status, descriptors::rwmStatus> field(kInstance);
  EXPECT_THROW(field.handleGet(RequestTo(0x4010)), ara::com::IllegalStateException);
  field.RegisterGetHandler([] {
    Promise<Status> promise;
    promise.SetResult(StatusOf(1));
    return promise.get_future();
  });
  field.handleGet(RequestTo(0x4010));
  EXPECT_EQ(application_.TakeSent().size(), 1U);
}

// The thread that brings the request waits for the future, whoever makes it ready and whenever.
TEST_F(GetterTest, AFutureThatBecomesReadyLaterIsWaitedFor) {
  std::thread worker;
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    auto promise = std::make_shared<Promise<Status>>();
    auto future = promise->get_future();
    worker = std::thread([promise] { promise->SetResult(StatusOf(3)); });
    return future;
  });
  const auto answer = AnswerTo(RequestTo(0x4010));
  worker.join();
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(PayloadOf(answer), support::Bytes("0000000a 00000006 2000 00000003"));
}

// Whatever goes wrong is one error response and one line in the log.
TEST_F(GetterTest, WhateverGoesWrongIsOneErrorResponseAndOneLine) {
  struct Case {
    const char* what;
    ara::com::internal::skeleton::GetHandler<Status> handler;
    const char* log;
  };
  const auto ready = [] {
    Promise<Status> promise;
    promise.SetResult(StatusOf(1));
    return promise.get_future();
  };
  const Case cases[] = {
      {"a promise that is dropped", [] { return Promise<Status>().get_future(); }, "broken promise"},
      {"a future of nothing", [] { return Future<Status>(); }, "no state associated with this future"},
      {"an exception", []() -> Future<Status> { throw std::runtime_error("no route"); }, "no route"},
      {"something else that is thrown", []() -> Future<Status> { throw 1; }, "what was thrown is no exception"},
      {"a stack that does not send", ready, "no network"},
  };
  for (const Case& test : cases) {
    skeleton_->rwmStatus.RegisterGetHandler(test.handler);
    bool fails = test.log == std::string("no network");
    application_.on_call = [&](const std::string& call) {
      if (call.rfind("send", 0) == 0 && std::exchange(fails, false)) {
        throw std::runtime_error("no network");
      }
    };
    testing::internal::CaptureStderr();
    const auto answer = AnswerTo(RequestTo(0x4010));
    const std::string log = testing::internal::GetCapturedStderr();
    application_.on_call = nullptr;
    ExpectError(answer, kBindingFailure);
    EXPECT_THAT(log, HasSubstr(std::string("handleGet() error : "))) << test.what;
    EXPECT_THAT(log, HasSubstr(std::string(test.log) + "\n")) << test.what;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
  }
  application_.on_call = [](const std::string& call) {
    if (call.rfind("send", 0) == 0) {
      throw std::runtime_error("no network at all");
    }
  };
  testing::internal::CaptureStderr();
  EXPECT_EQ(AnswerTo(RequestTo(0x4010)), nullptr);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("The error cannot be answered: no network at all\n"));
}

TEST_F(GetterTest, ARequestThatWantsNoAnswerGetsNone) {
  const auto request = RequestTo(0x4010);
  request->set_message_type(message_type_e::MT_REQUEST_NO_RETURN);
  int calls = 0;
  for (const bool works : {true, false}) {
    skeleton_->rwmStatus.RegisterGetHandler([&calls, works] {
      ++calls;
      Promise<Status> promise;
      if (works) {
        promise.SetResult(StatusOf(1));
      }
      return promise.get_future();
    });
    testing::internal::CaptureStderr();
    EXPECT_EQ(AnswerTo(request), nullptr);
    testing::internal::GetCapturedStderr();
  }
  EXPECT_EQ(calls, 2);
}

TEST_F(GetterTest, AHandlerMayEndItsOffer) {
  for (const bool destroys : {false, true}) {
    skeleton_->rwmStatus.RegisterGetHandler([this, destroys] {
      skeleton_->StopOfferService();
      if (destroys) {
        skeleton_.reset();
      }
      Promise<Status> promise;
      promise.SetResult(StatusOf(4));
      return promise.get_future();
    });
    const auto answer = AnswerTo(RequestTo(0x4010));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(PayloadOf(answer), support::Bytes("0000000a 00000006 2000 00000004"));
    if (!destroys) {
      skeleton_->OfferService();
      application_.TakeSent();
    }
  }
}

// What a handler owns may use the field when it goes.
TEST_F(GetterTest, AHandlerIsReplacedWithoutALock) {
  struct CallsBack {
    RouteBasedEnergyContentsSkeleton& skeleton;
    ~CallsBack() {
      skeleton.rwmStatus.Update(StatusOf(5));
      skeleton.rwmStatus.RegisterGetHandler(nullptr);
    }
  };
  skeleton_->rwmStatus.RegisterGetHandler(
      [object = std::make_shared<CallsBack>(CallsBack{*skeleton_})] { return Promise<Status>().get_future(); });
  skeleton_->rwmStatus.ServeCurrentValue();
  application_.TakeCalls();
}

TEST_F(GetterTest, HandlersThatAreReplacedByManyThreadsGoWithoutALock) {
  struct CallsBack {
    RouteBasedEnergyContentsSkeleton& skeleton;
    ~CallsBack() { skeleton.rwmStatus.Update({}); }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([this] {
      for (int round = 0; round < 30000; ++round) {
        skeleton_->rwmStatus.RegisterGetHandler(
            [owned = std::make_shared<CallsBack>(CallsBack{*skeleton_})] { return Promise<Status>().get_future(); });
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  skeleton_->rwmStatus.ServeCurrentValue();
}

// A request that comes while its offer ends is not told that nobody has registered a handler.
TEST_F(GetterTest, ARequestDuringTheEndOfItsOfferIsNotAnswered) {
  using namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip;
  using FieldImpl = ara::com::internal::vsomeip::skeleton::FieldImpl<Status, descriptors::rwmStatus>;
  const auto getter = std::make_unique<FieldImpl>(kInstance)->GetGetter();  // as a thread has it that is on its way
  testing::internal::CaptureStderr();
  getter->onRequest(RequestTo(0x4010));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_TRUE(application_.TakeSent().empty());
}

TEST_F(GetterTest, ANewHandlerReachesARunningOffer) {
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->StopOfferService();
  skeleton_->OfferService();
  EXPECT_EQ(AnswerTo(RequestTo(0x4010))->get_message_type(), message_type_e::MT_RESPONSE) << "kept from offer to offer";
}

TEST_F(GetterTest, DestructionWaitsForARunningHandler) {
  std::promise<void> entered;
  std::promise<void> destroyed;
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    entered.set_value();
    EXPECT_EQ(destroyed.get_future().wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    Promise<Status> promise;
    promise.SetResult(Status());
    return promise.get_future();
  });
  std::thread network([this] { application_.Deliver(RequestTo(0x4010)); });
  entered.get_future().wait();
  skeleton_.reset();
  destroyed.set_value();
  network.join();
}

/// Makes the futures of get handlers ready on a thread of its own: with a value, with an error, or by dropping them.
class Worker {
 public:
  ~Worker() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      stop_ = true;
      changed_.notify_all();
    }
    thread_.join();
  }
  Future<Status> Take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stop_ || ++taken_ % 5 == 0) {
      throw std::runtime_error("nobody works");
    }
    changed_.notify_all();
    return promises_.emplace_back().get_future();
  }

 private:
  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (unsigned number = 0;; ++number) {
      changed_.wait(lock, [this] { return stop_ || !promises_.empty(); });
      if (promises_.empty()) {
        return;
      }
      auto promise = std::move(promises_.front());
      promises_.pop_front();
      lock.unlock();
      if (number % 3 == 0) {
        promise.SetResult(StatusOf(number));
      } else if (number % 3 == 1) {
        promise.SetError(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
      }
      { const auto dropped = std::move(promise); }
      lock.lock();
    }
  }

  std::mutex mutex_;  // guards the members below
  std::condition_variable changed_;
  std::deque<Promise<Status>> promises_;
  unsigned taken_ = 0;
  bool stop_ = false;
  std::thread thread_{[this] { Run(); }};
};

// Requests, updates and new handlers, which answer at once or on another thread, while offers come and go.
TEST_F(GetterTest, EverythingMayHappenAtOnce) {
  std::atomic<bool> stop{false};
  std::atomic<int> answers{0};
  Worker worker;
  skeleton_->rwmStatus.ServeCurrentValue();
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      while (!stop) {
        application_.Deliver(RequestTo(0x4010));
        answers += static_cast<int>(application_.TakeSent().size());
      }
    });
  }
  threads.emplace_back([&] {
    for (unsigned number = 0; !stop; ++number) {
      skeleton_->rwmStatus.Update(StatusOf(number));
      application_.TakeCalls();
    }
  });
  threads.emplace_back([&] {
    for (unsigned number = 0; !stop; ++number) {
      if (number % 3 == 0) {
        skeleton_->rwmStatus.ServeCurrentValue();
      } else {
        skeleton_->rwmStatus.RegisterGetHandler([&worker] { return worker.Take(); });
      }
    }
  });
  testing::internal::CaptureStderr();
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  for (int round = 0; round < 100 || (answers < 1000 && std::chrono::steady_clock::now() < end); ++round) {
    skeleton_->StopOfferService();
    skeleton_->OfferService();
  }
  stop = true;
  for (auto& thread : threads) {
    thread.join();
  }
  testing::internal::GetCapturedStderr();
  EXPECT_GE(answers, 1000);
}

}  // namespace
