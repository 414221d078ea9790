#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interfaces/energysystem/energysystem_impl.h"
#include "tests/support/recording_application.h"

namespace proxy_test {

using kro::services::energysystem::energysystem_binding::vsomeip::EnergySystemImpl;
using Record = kro::services::energysystem::datatypes::DT_notifications_struct;
using Value = std::vector<Record>;
using support::RecordingApplication;
using Message = std::shared_ptr<::vsomeip::message>;

inline constexpr std::uint16_t kService = 0x6005;
inline constexpr std::uint16_t kInstance = 7;
inline constexpr std::uint16_t kEvent = 0xC010;
inline constexpr const char* kFortyTwo = "0000000a 00000006 2000 0000002a";

/// A field value of one record whose member0 is `number`.
inline std::string ValueOf(unsigned number) {
  char text[48];
  std::snprintf(text, sizeof(text), "0000000a 00000006 2000 %08x", number);
  return text;
}

inline Message NotificationOf(unsigned number) {
  return support::Notification(kService, kInstance, kEvent, 4, ValueOf(number));
}

class ProxyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    application_.TakeCalls();
    application_.TakeSent();
  }
  void TearDown() override {
    application_.on_call = nullptr;
    application_.on_send = nullptr;
    EXPECT_EQ(application_.HandlerCount(), 0U) << "everything that was registered is unregistered";
  }

  Message TakeRequest() {
    const auto sent = application_.TakeSent();
    EXPECT_EQ(sent.size(), 1U);
    return sent.empty() ? nullptr : sent.front();
  }

  RecordingApplication& application_ = RecordingApplication::Get();
};

/// With a binding that is there before the test and gone before the check at its end.
class BoundProxyTest : public ProxyTest {
 protected:
  void TearDown() override {
    binding_.reset();
    ProxyTest::TearDown();
  }

  std::unique_ptr<EnergySystemImpl> binding_ = std::make_unique<EnergySystemImpl>(kInstance);
};

}  // namespace proxy_test
