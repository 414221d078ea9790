// Gets and follows energysystem/notifications, instance 1, through the product until its input ends, and says what
// happens, a line each:
//   state subscribed|pending     sample NUMBER     get NUMBER     error CODE     with NUMBER the first record's member0
// and at the end what became of the getters, those included that only the end of the proxy answered:
//   end STARTED VALUES ERRORS BROKEN

#include <cstdio>
#include <list>
#include <poll.h>
#include <unistd.h>
#include <vector>

#include "interfaces/energysystem/energysystem_proxy.h"

namespace {

using kro::services::energysystem::proxy::EnergySystemProxy;
using Value = std::vector<kro::services::energysystem::datatypes::DT_notifications_struct>;

constexpr int kPeriod = 10;  // milliseconds between two getters
constexpr std::size_t kCacheSize = 64;
constexpr std::chrono::seconds kLastAnswers{2};

unsigned NumberOf(const Value& value) { return value.empty() ? 0 : value.front().member0.value_or(0); }

void Follow(EnergySystemProxy& proxy) {
  auto& field = proxy.notifications;
  field.SetSubscriptionStateChangeHandler([](ara::com::SubscriptionState state) {
    std::puts(state == ara::com::SubscriptionState::kSubscribed ? "state subscribed" : "state pending");
  });
  field.SetReceiveHandler(
      [&field] { field.GetNewSamples([](auto sample) { std::printf("sample %u\n", NumberOf(*sample)); }); });
  field.Subscribe(kCacheSize);
}

class Getters {
 public:
  void Start(EnergySystemProxy& proxy) {
    open_.push_back(proxy.notifications.Get());
    ++started_;
  }

  /// Takes the answers that are there.
  void Take() {
    open_.remove_if([this](auto& answer) {
      if (!answer.is_ready()) {
        return false;
      }
      const auto result = answer.GetResult();
      if (result) {
        ++values_;
        std::printf("get %u\n", NumberOf(result.value()));
      } else {
        ++errors_;
        std::printf("error %d\n", static_cast<int>(result.error().Value()));
      }
      return true;
    });
  }

  void TakeLast() {
    const auto end = std::chrono::steady_clock::now() + kLastAnswers;
    for (const auto& answer : open_) {
      answer.wait_until(end);
    }
    Take();
  }

  /// After the proxy's end every getter has an answer.
  bool Report() {
    const unsigned errors = errors_;
    Take();
    std::printf("end %u %u %u %u\n", started_, values_, errors, errors_ - errors);
    return open_.empty();
  }

 private:
  std::list<ara::core::Future<Value>> open_;
  unsigned started_ = 0;
  unsigned values_ = 0;
  unsigned errors_ = 0;
};

}  // namespace

int main() {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  Getters getters;
  {
    EnergySystemProxy proxy(EnergySystemProxy::HandleType(ara::com::InstanceIdentifier("1")));
    Follow(proxy);
    for (pollfd input{STDIN_FILENO, POLLIN, 0}; poll(&input, 1, kPeriod) == 0; getters.Take()) {
      getters.Start(proxy);
    }
    getters.TakeLast();
  }
  return getters.Report() ? 0 : 1;
}
