#include <stdexcept>

#include "ara/com/internal/vsomeip/proxy/vsomeip_method_impl_delegate.h"
#include "core_types/com_error_domain.h"
#include "tests/proxy/proxy_fixture.h"

namespace {

using namespace proxy_test;
using ara::com::ComErrc;
using ara::core::future_errc;
using ::testing::HasSubstr;
using ::vsomeip::message_type_e;
using ::vsomeip::return_code_e;

class MethodTest : public BoundProxyTest {};

TEST_F(MethodTest, AGetterSendsAnEmptyRequestAndYieldsTheValue) {
  application_.TakeCalls();
  auto future = binding_->Getnotifications().Get();
  EXPECT_THAT(application_.TakeCalls(), ::testing::ElementsAre("send 6005 7 4010 4 1"));
  const auto request = TakeRequest();
  EXPECT_EQ(request->get_message_type(), message_type_e::MT_REQUEST);
  EXPECT_FALSE(request->is_reliable());
  EXPECT_EQ(request->get_payload() == nullptr ? 0 : request->get_payload()->get_length(), 0U);

  application_.Deliver(support::ResponseTo(request, kFortyTwo));
  const Value value = future.get();
  ASSERT_EQ(value.size(), 1U);
  EXPECT_EQ(value[0].member0, 42U);
  EXPECT_FALSE(value[0].member1.has_value());
}

// The stack hands a response over before send() has returned: it waits until the call stands in the table.
TEST_F(MethodTest, AResponseMayBeFasterThanTheCaller) {
  std::thread network;
  application_.on_send = [&](const Message& request) {
    network = std::thread([this, request] { application_.Deliver(support::ResponseTo(request, kFortyTwo)); });
  };
  auto future = binding_->Getnotifications().Get();
  EXPECT_EQ(future.get().at(0).member0, 42U);
  network.join();
}

TEST_F(MethodTest, ResponsesFindTheirCallsInAnyOrder) {
  auto first = binding_->Getnotifications().Get();
  const auto firstRequest = TakeRequest();
  auto second = binding_->Getnotifications().Get();
  const auto secondRequest = TakeRequest();
  EXPECT_EQ(secondRequest->get_session(), firstRequest->get_session() + 1);
  application_.Deliver(support::ResponseTo(secondRequest, ValueOf(2)));
  application_.Deliver(support::ResponseTo(firstRequest, ValueOf(1)));
  EXPECT_EQ(first.get().at(0).member0, 1U);
  EXPECT_EQ(second.get().at(0).member0, 2U);
}

TEST_F(MethodTest, SessionIdsCountFromOneAndWrapToZero) {
  application_.TakeCalls();
  for (unsigned call = 1; call <= 0x10001; ++call) {
    binding_->Getnotifications().Get();
    if (call == 1 || call == 0xFFFF || call == 0x10000 || call == 0x10001) {
      char line[40];
      std::snprintf(line, sizeof(line), "send 6005 7 4010 4 %x", call % 0x10000);
      EXPECT_EQ(application_.TakeCalls().back(), line);
    }
  }
}

// After 65,536 calls the stack's request ids come around. A call that still waits then cannot be told from the new one.
TEST_F(MethodTest, ACallWhoseRequestIdComesAroundFails) {
  auto& field = binding_->Getnotifications();
  application_.next_session = 5;
  auto older = field.Get();
  const auto request = TakeRequest();
  bool told = false;
  older.then([&] { told = true; });
  application_.next_session = 5;
  testing::internal::CaptureStderr();
  auto newer = field.Get();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("Request id 305397765 has come around: the older call is given up\n"));
  EXPECT_TRUE(told);
  EXPECT_EQ(older.GetResult().error(), MakeErrorCode(ComErrc::kNetworkBindingFailure));
  application_.Deliver(support::ResponseTo(request, kFortyTwo));
  EXPECT_EQ(newer.get().at(0).member0, 42U);
}

// A thread that brings a response while a continuation runs leaves it to the thread that is in the continuation.
TEST_F(MethodTest, CompletionsNeverOverlapAndNoThreadWaitsForThem) {
  auto first = binding_->Getnotifications().Get();
  const auto firstRequest = TakeRequest();
  auto second = binding_->Getnotifications().Get();
  const auto secondRequest = TakeRequest();
  first.then([&] {
    std::thread network([&] { application_.Deliver(support::ResponseTo(secondRequest, kFortyTwo)); });
    network.join();
    EXPECT_FALSE(second.is_ready());
  });
  application_.Deliver(support::ResponseTo(firstRequest, kFortyTwo));
  EXPECT_EQ(second.get().at(0).member0, 42U);
}

TEST_F(MethodTest, WhatAContinuationThrowsIsLogged) {
  testing::internal::CaptureStderr();
  for (int call = 0; call < 2; ++call) {
    auto future = binding_->Getnotifications().Get();
    future.then([call] { call == 0 ? throw std::runtime_error("broken") : throw 1; });
    application_.Deliver(support::ResponseTo(TakeRequest(), kFortyTwo));
    EXPECT_EQ(future.get().at(0).member0, 42U);
  }
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_THAT(log, HasSubstr("A continuation has thrown: broken\n"));
  EXPECT_THAT(log, HasSubstr("A continuation has thrown what is no exception\n"));
}

TEST_F(MethodTest, TwoBindingsOfOneInstanceGetTheirOwnResponses) {
  auto other = std::make_unique<EnergySystemImpl>(kInstance);
  auto one = binding_->Getnotifications().Get();
  const auto oneRequest = TakeRequest();
  auto two = other->Getnotifications().Get();
  const auto twoRequest = TakeRequest();
  application_.Deliver(support::ResponseTo(twoRequest, ValueOf(2)));
  application_.Deliver(support::ResponseTo(oneRequest, ValueOf(1)));
  EXPECT_EQ(one.get().at(0).member0, 1U);
  EXPECT_EQ(two.get().at(0).member0, 2U);

  auto pending = other->Getnotifications().Get();
  other.reset();
  EXPECT_EQ(pending.GetResult().error(), MakeErrorCode(future_errc::broken_promise));
  auto still = binding_->Getnotifications().Get();
  application_.Deliver(support::ResponseTo(application_.TakeSent().back(), ValueOf(3)));
  EXPECT_EQ(still.get().at(0).member0, 3U) << "the remaining binding keeps its handler";
}

TEST_F(MethodTest, LateDuplicateAndForeignResponsesChangeNothing) {
  auto future = binding_->Getnotifications().Get();
  const auto request = TakeRequest();
  testing::internal::CaptureStderr();
  const auto foreignClient = support::ResponseTo(request, kFortyTwo);
  foreignClient->set_client(0x4321);
  application_.Deliver(foreignClient);
  const auto foreignSession = support::ResponseTo(request, kFortyTwo);
  foreignSession->set_session(static_cast<std::uint16_t>(request->get_session() + 1));
  application_.Deliver(foreignSession);
  EXPECT_FALSE(future.is_ready());

  const auto response = support::ResponseTo(request, kFortyTwo);
  application_.Deliver(response);
  application_.Deliver(response);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(future.get().at(0).member0, 42U);
}

struct ResponseCase {
  const char* what;
  void (*change)(::vsomeip::message& response);
  const char* payload;
  const char* log;  // what the one warning ends with; empty for none
  ara::core::Result<unsigned> result;
};

const auto kBindingFailure = MakeErrorCode(ComErrc::kNetworkBindingFailure);

TEST_F(MethodTest, AnswersEachCallWithAValueOrAnError) {
  const auto unchanged = [](::vsomeip::message&) {};
  const auto failed = [](::vsomeip::message& response) { response.set_return_code(return_code_e::E_NOT_OK); };
  constexpr const char* kError = "00000013 01 0010 8000000000001267 00000001 00000005";
  const ResponseCase cases[] = {
      {"value", unchanged, kFortyTwo, "", 42U},
      {"value in an error message", [](auto& response) { response.set_message_type(message_type_e::MT_ERROR); },
       kFortyTwo, "", 42U},
      {"error code in a response", failed, kError, "", MakeErrorCode(ComErrc::kServiceNotAvailable)},
      {"error code of a domain that nobody knows", failed, "00000013 01 0010 00000000000000aa 00000007 00000000", "",
       ara::core::ErrorCode(7, ara::com::internal::vsomeip::common::error_domains::Registry::getDomain(0xAA))},
      {"wrong version", [](auto& response) { response.set_interface_version(3); }, kFortyTwo,
       "onMessage:%d: Discarding invalid message", kBindingFailure},
      {"wrong type", [](auto& response) { response.set_message_type(message_type_e::MT_NOTIFICATION); }, kFortyTwo,
       "onMessage:%d: Discarding invalid message", kBindingFailure},
      {"three bytes", unchanged, "000000",
       "(Exception : proxy/vsomeip_method_impl_delegate.h) SetResult() deserializer error : "
       "Deserialization of ara::core::Vector<T> failed, insufficient data.",
       kBindingFailure},
      {"a record longer than its bytes", unchanged, "00000008 00000005 20000000",
       "SetResult() deserializer error : "
       "Deserialization of structure failed, declared size excess data length.",
       kBindingFailure},
      {"error without a code", failed, "",
       "(Exception : proxy/vsomeip_method_impl_delegate.h) SetError() deserializer error : "
       "Deserialization of ara::core::ErrorCode failed, unexpected data length.",
       kBindingFailure},
  };
  for (const ResponseCase& test : cases) {
    auto future = binding_->Getnotifications().Get();
    const auto response = support::ResponseTo(TakeRequest(), test.payload);
    test.change(*response);
    testing::internal::CaptureStderr();
    application_.Deliver(response);
    const std::string log = testing::internal::GetCapturedStderr();
    if (*test.log == '\0') {
      EXPECT_EQ(log, "") << test.what;
    } else {
      const std::string text = test.log;
      EXPECT_THAT(log, HasSubstr("[warning] [T7GN] proxy/vsomeip_method_impl_delegate:")) << test.what;
      EXPECT_THAT(log, HasSubstr(text.substr(text.find("%d") == std::string::npos ? 0 : text.find("%d") + 2)));
    }
    const auto result = future.GetResult();
    ASSERT_EQ(result.HasValue(), test.result.HasValue()) << test.what;
    if (result) {
      EXPECT_EQ(result.value().at(0).member0, test.result.value());
    } else {
      EXPECT_EQ(result.error(), test.result.error()) << test.what;
    }
  }
}

TEST_F(MethodTest, ARequestThatTheStackRefusesFailsItsCall) {
  application_.on_call = [](const std::string& call) {
    if (call.rfind("send", 0) == 0) {
      throw std::length_error("too long");
    }
  };
  testing::internal::CaptureStderr();
  auto future = binding_->Getnotifications().Get();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("The request cannot be sent: too long\n"));
  application_.on_call = nullptr;
  ASSERT_TRUE(future.is_ready());
  EXPECT_EQ(future.GetResult().error(), MakeErrorCode(ara::com::ComErrc::kNetworkBindingFailure));
  auto next = binding_->Getnotifications().Get();
  application_.Deliver(support::ResponseTo(TakeRequest(), kFortyTwo));
  EXPECT_TRUE(next.is_ready()) << "the refused one holds nothing up";
}

TEST_F(MethodTest, ValidationLogsBothMismatches) {
  using namespace kro::services::energysystem::energysystem_binding::vsomeip;
  using ara::com::internal::vsomeip::proxy::MakeGetMethodDescriptorFrom;
  using ara::com::internal::vsomeip::proxy::MethodImplDelegate;
  const MethodImplDelegate<MakeGetMethodDescriptorFrom<descriptors::notifications>, Value> delegate(kInstance);
  auto future = binding_->Getnotifications().Get();
  const auto request = TakeRequest();
  const auto response = support::ResponseTo(request, kFortyTwo);
  EXPECT_TRUE(delegate.validateMessage(*request, *response));
  response->set_client(9);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(delegate.validateMessage(*request, *response)) << "the client alone";
  testing::internal::GetCapturedStderr();
  response->set_session(8);
  request->set_session(7);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(delegate.validateMessage(*request, *response));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_THAT(log, HasSubstr("Incorrect client id:9 Vs 4660\n"));
  EXPECT_THAT(log, HasSubstr("Incorrect session id:8 Vs 7\n"));
}

}  // namespace
