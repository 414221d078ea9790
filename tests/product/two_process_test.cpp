#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interfaces/energysystem/energysystem_proxy.h"
#include "tests/support/child_process.h"

// An application with the product's proxies, and a provider in another process, over the stack that was built with.
namespace {

using ara::com::SamplePtr;
using ara::com::SubscriptionState;
using kro::services::energysystem::proxy::EnergySystemProxy;
using Value = std::vector<kro::services::energysystem::datatypes::DT_notifications_struct>;
using ::testing::ElementsAre;

constexpr std::chrono::seconds kDeadline{20};

/// What happened, in order, with a way to wait for it.
template <typename T>
class History {
 public:
  void Add(T entry) {
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.push_back(std::move(entry));
    changed_.notify_all();
  }
  /// Whether `entry` comes within the deadline, or has come after the last one that was waited for.
  bool WaitFor(const T& entry) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kDeadline, [&] {
      while (next_ < entries_.size()) {
        if (entries_[next_++] == entry) {
          return true;
        }
      }
      return false;
    });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<T> entries_;
  std::size_t next_ = 0;
};

/// A provider of energysystem at an instance that no other test uses.
class Provider {
 public:
  explicit Provider(int instance) : instance_(instance) {}

  void Offer() {
    process_ = std::make_unique<support::ChildProcess>(STEERED_PROVIDER);
    for (const char* const field : {"4020", "4030", "4040", "4010"}) {
      values_[field] = std::string("0000000a0000000620000000") + field;
    }
    OfferAgain();
  }
  void OfferAgain() {
    char command[64];
    std::snprintf(command, sizeof(command), "offer 6005 %x 4 3 4020 4030 4040 4010", static_cast<unsigned>(instance_));
    process_->Tell(command);
    // The values of fields do not survive the end of an offer.
    for (const auto& [field, hex] : values_) {
      process_->Tell("set " + field + " " + hex);
    }
  }
  void Set(const std::string& field, const std::string& hex) {
    values_[field] = hex;
    process_->Tell("set " + field + " " + hex);
  }
  void SetNumber(unsigned number) {
    char hex[32];
    std::snprintf(hex, sizeof(hex), "0000000a000000062000%08x", number);
    Set("4010", hex);
  }
  support::ChildProcess& Process() { return *process_; }

 private:
  const int instance_;
  std::map<std::string, std::string> values_;
  std::unique_ptr<support::ChildProcess> process_;
};

class TwoProcessTest : public ::testing::Test {
 protected:
  // One instance per test case, so that a provider that is just going does not disturb the next.
  static int NextInstance() {
    static int instance = 0x100 + static_cast<int>(getpid() % 0x4000);
    return instance++;
  }

  EnergySystemProxy::HandleType WaitForHandle() {
    History<bool> found;
    const auto search = EnergySystemProxy::StartFindService(
        [&](const auto& handles, ara::com::FindServiceHandle) { found.Add(!handles.empty()); }, identifier_);
    EXPECT_TRUE(found.WaitFor(true)) << "the service did not come";
    EnergySystemProxy::StopFindService(search);
    return EnergySystemProxy::HandleType(identifier_);
  }

  /// Follows the notifications field: each first member and each subscription state.
  void Follow(EnergySystemProxy& proxy) {
    auto& field = proxy.notifications;
    field.SetSubscriptionStateChangeHandler([this](SubscriptionState state) { states_.Add(state); });
    field.SetReceiveHandler([this, &field] {
      field.GetNewSamples([this](SamplePtr<const Value> sample) {
        numbers_.Add(sample->empty() ? 0U : sample->at(0).member0.value_or(0U));
      });
    });
    field.Subscribe(10);
  }

  template <typename Field>
  static auto GetFrom(Field& field) {
    auto future = field.Get();
    EXPECT_EQ(future.wait_for(kDeadline), ara::core::future_status::ready) << "no answer";
    return future.GetResult();
  }

  const int instance_ = NextInstance();
  const ara::com::InstanceIdentifier identifier_{std::to_string(instance_)};
  Provider provider_{instance_};
  History<SubscriptionState> states_;
  History<unsigned> numbers_;
};

TEST_F(TwoProcessTest, ReadsAndFollowsEveryField) {
  provider_.Offer();
  EnergySystemProxy proxy(WaitForHandle());
  EXPECT_EQ(GetFrom(proxy.highVoltageBatteries).value().at(0).member0, 0x4020U);
  EXPECT_EQ(GetFrom(proxy.lowVoltageBatteries).value().at(0).member0, 0x4030U);
  EXPECT_EQ(GetFrom(proxy.lowVoltageSystemInfo).value().at(0).member0, 0x4040U);
  EXPECT_EQ(GetFrom(proxy.notifications).value().at(0).member0, 0x4010U);

  Follow(proxy);
  EXPECT_TRUE(numbers_.WaitFor(0x4010)) << "the value from before the subscription comes first";
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
  provider_.SetNumber(1);
  provider_.SetNumber(2);
  EXPECT_TRUE(numbers_.WaitFor(1));
  EXPECT_TRUE(numbers_.WaitFor(2));

  EnergySystemProxy other(WaitForHandle());
  EXPECT_EQ(GetFrom(other.notifications).value().at(0).member0, 2U);
  proxy.notifications.Unsubscribe();
  Follow(other);
  EXPECT_TRUE(numbers_.WaitFor(2)) << "a new subscription starts with the value as it stands";
  proxy.notifications.UnsetSubscriptionStateChangeHandler();
  Follow(proxy);
  EXPECT_TRUE(numbers_.WaitFor(2)) << "also where another proxy is subscribed: its receive handler is told";
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
}

TEST_F(TwoProcessTest, ARefusedSubscriptionEndsNotSubscribedAndMayBeTriedAgain) {
  provider_.Offer();
  provider_.Process().Tell("refuse 4010");
  EnergySystemProxy proxy(WaitForHandle());
  Follow(proxy);
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kNotSubscribed)) << "the refusal did not come";
  proxy.notifications.Subscribe(10);
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscriptionPending));
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kNotSubscribed)) << "the second refusal did not come";
  provider_.Process().Tell("accept 4010");
  provider_.SetNumber(5);
  proxy.notifications.Subscribe(10);
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
  EXPECT_TRUE(numbers_.WaitFor(5));
}

TEST_F(TwoProcessTest, DeliversTheProvidersError) {
  provider_.Offer();
  EnergySystemProxy proxy(WaitForHandle());
  provider_.Process().Tell("fail 4010 0000001301001080000000000012670000000100000007");
  const auto result = GetFrom(proxy.notifications);
  ASSERT_FALSE(result.HasValue());
  EXPECT_EQ(result.error(), MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
  EXPECT_EQ(result.error().SupportData(), 7);
}

TEST_F(TwoProcessTest, OutlivesAKilledProvider) {
  provider_.Offer();
  EnergySystemProxy proxy(WaitForHandle());
  Follow(proxy);
  ASSERT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
  provider_.Process().Kill();
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscriptionPending)) << "the loss was not noticed";
  provider_.Offer();
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed)) << "the subscription did not come back";
  provider_.SetNumber(77);
  EXPECT_TRUE(numbers_.WaitFor(77));
  EXPECT_EQ(GetFrom(proxy.notifications).value().at(0).member0, 77U);
}

TEST_F(TwoProcessTest, OutlivesAWithdrawnOffer) {
  provider_.Offer();
  EnergySystemProxy proxy(WaitForHandle());
  Follow(proxy);
  ASSERT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
  provider_.Process().Tell("withdraw");
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscriptionPending));
  provider_.OfferAgain();
  EXPECT_TRUE(states_.WaitFor(SubscriptionState::kSubscribed));
  provider_.SetNumber(78);
  EXPECT_TRUE(numbers_.WaitFor(78));
}

TEST_F(TwoProcessTest, FindsInstancesAsTheyComeAndGo) {
  History<std::size_t> counts;
  const auto search = EnergySystemProxy::StartFindService(
      [&](const auto& handles, ara::com::FindServiceHandle) { counts.Add(handles.size()); }, identifier_);
  provider_.Offer();
  EXPECT_TRUE(counts.WaitFor(1));
  const auto handles = EnergySystemProxy::FindService();
  EXPECT_THAT(handles, ::testing::Contains(EnergySystemProxy::HandleType(identifier_)));
  provider_.Process().Tell("withdraw");
  EXPECT_TRUE(counts.WaitFor(0));
  EXPECT_TRUE(EnergySystemProxy::FindService(identifier_).empty());
  EnergySystemProxy::StopFindService(search);
  EXPECT_THROW(EnergySystemProxy{EnergySystemProxy::HandleType("no instance")}, ara::com::ComErrorDomainException);
}

TEST_F(TwoProcessTest, CarriesAValueOfAMebibyte) {
  provider_.Offer();
  EnergySystemProxy proxy(WaitForHandle());
  provider_.Process().Tell("fill 4010 40000");
  EXPECT_EQ(GetFrom(proxy.notifications).value().size(), 0x40000U);
  History<std::size_t> sizes;
  auto& field = proxy.notifications;
  field.SetReceiveHandler(
      [&] { field.GetNewSamples([&](SamplePtr<const Value> sample) { sizes.Add(sample->size()); }); });
  field.Subscribe(1);
  EXPECT_TRUE(sizes.WaitFor(0x40000));
}

}  // namespace
