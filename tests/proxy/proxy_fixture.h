#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interfaces/energysystem/energysystem_impl.h"
#include "tests/support/recording_application.h"

namespace proxy_test {

using ara::com::SamplePtr;
using ara::com::SubscriptionState;
using kro::services::energysystem::energysystem_binding::vsomeip::EnergySystemImpl;
using Record = kro::services::energysystem::datatypes::DT_notifications_struct;
using Value = std::vector<Record>;
using Field = kro::services::energysystem::proxy::fields::notifications;
using support::RecordingApplication;
using Message = std::shared_ptr<::vsomeip::message>;

inline constexpr std::uint16_t kService = 0x6005;
inline constexpr std::uint16_t kInstance = 7;
inline constexpr std::uint16_t kEvent = 0xC010;
inline constexpr std::uint16_t kAccepted = 0;
inline constexpr std::uint16_t kRejected = 7;
inline constexpr const char* kFortyTwo = "0000000a 00000006 2000 0000002a";
inline constexpr std::chrono::seconds kDeadline{60};

/// A field value of one record whose member0 is `number`.
inline std::string ValueOf(unsigned number) {
  char text[48];
  std::snprintf(text, sizeof(text), "0000000a 00000006 2000 %08x", number);
  return text;
}

inline Message NotificationOf(unsigned number) {
  return support::Notification(kService, kInstance, kEvent, 4, ValueOf(number));
}

/// What waits, oldest first.
inline std::vector<unsigned> Fetch(Field& field, std::size_t most = 100) {
  std::vector<unsigned> numbers;
  const auto count =
      field.GetNewSamples([&](SamplePtr<const Value> sample) { numbers.push_back(*sample->at(0).member0); }, most);
  EXPECT_EQ(count.ValueOrThrow(), numbers.size());
  return numbers;
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
    EXPECT_EQ(application_.CountLeftovers(), 0U) << "everything that was asked for is given back";
  }

  Message TakeRequest() {
    const auto sent = application_.TakeSent();
    EXPECT_EQ(sent.size(), 1U);
    return sent.empty() ? nullptr : sent.front();
  }
  void Report(std::uint16_t status) { application_.ReportStatus(kService, kInstance, kEvent, status); }

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
  Field& field_ = binding_->Getnotifications();
};

/// A thread of the stack, which makes the calls that it is given, in their order. Ends when all are made.
class StackThread {
 public:
  ~StackThread() {
    Push(nullptr);
    thread_.join();
  }
  void Push(RecordingApplication::Call call) {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(std::move(call));
    changed_.notify_all();
  }
  /// Returns when all calls up to now are made.
  void Drain() {
    std::promise<void> made;
    Push([&] { made.set_value(); });
    made.get_future().wait();
  }

 private:
  void Run() {
    for (;;) {
      std::unique_lock<std::mutex> lock(mutex_);
      changed_.wait(lock, [this] { return !calls_.empty(); });
      const auto call = std::move(calls_.front());
      calls_.pop_front();
      lock.unlock();
      if (!call) {
        return;
      }
      call();
    }
  }

  std::mutex mutex_;  // guards calls_
  std::condition_variable changed_;
  std::deque<RecordingApplication::Call> calls_;
  std::thread thread_{[this] { Run(); }};
};

}  // namespace proxy_test
