#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

#include "ara/com/internal/vsomeip/proxy/handler_calls.h"
#include "platform/include/service_availability.h"
#include "platform/vsomeipbinding/stack_thread.h"

namespace ara::com::internal::vsomeip::common {

namespace {

using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint8_t>;  // service, instance, major version

/// What follows one service instance.
struct Followed {
  // A change is told in its turn, also where a thread that tells an earlier one to several followers is held up by one
  // of them: whoever comes first tells both.
  using Calls = proxy::HandlerCalls<bool>;

  std::map<std::uint64_t, std::shared_ptr<Calls>> followers;  // by token
  bool available = false;
};

class AvailabilityTable {
 public:
  /// Never destroyed: static proxies take their registrations back at any time, and the stack may be calling.
  static AvailabilityTable& Get() {
    static AvailabilityTable& table = *new AvailabilityTable;
    return table;
  }

  std::uint64_t Register(const ServiceInstance& service, std::function<void(bool)> handler) {
    const auto application = runtime::StackThread::Get().Start();
    auto shared = std::make_shared<const std::function<void(bool)>>(std::move(handler));
    const auto calls = std::make_shared<Followed::Calls>();
    calls->Set(shared);
    const Key key{service.service, service.instance, service.major};
    const std::lock_guard<std::mutex> lock(mutex_);
    auto& followers = followed_[key].followers;
    followers.emplace(++last_token_, calls);
    keys_.emplace(last_token_, key);
    if (followers.size() == 1) {
      application->register_availability_handler(
          service.service, service.instance,
          ::vsomeip::availability_handler_t([this, key](::vsomeip::service_t, ::vsomeip::instance_t, bool available) {
            OnAvailability(key, available);
          }),
          service.major, ::vsomeip::ANY_MINOR);
    }
    return last_token_;
  }

  void Unregister(std::uint64_t token) {
    std::shared_ptr<Followed::Calls> dropped;  // destroyed without the lock: a handler may own objects
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = keys_.find(token);
    if (found == keys_.end()) {
      return;
    }
    const Key key = found->second;
    keys_.erase(found);
    auto& followers = followed_[key].followers;
    dropped = followers.extract(token).mapped();
    if (!followers.empty()) {
      return;
    }
    followed_.erase(key);
    if (const auto application = runtime::StackThread::Get().Running()) {
      application->unregister_availability_handler(std::get<0>(key), std::get<1>(key), std::get<2>(key),
                                                   ::vsomeip::ANY_MINOR);
    }
  }

 private:
  void OnAvailability(const Key& key, bool available) {
    std::vector<std::shared_ptr<Followed::Calls>> concerned;
    std::unique_lock<std::mutex> lock(mutex_);
    const auto found = followed_.find(key);
    if (found == followed_.end() || std::exchange(found->second.available, available) == available) {
      return;
    }
    for (const auto& [token, calls] : found->second.followers) {
      calls->Add(available);
      concerned.push_back(calls);
    }
    for (const auto& calls : concerned) {
      calls->Make(lock, nobody_waits_);
    }
  }

  // Guards the members below and the followers' calls. Held while the stack is told; the stack never calls back from
  // within.
  std::mutex mutex_;
  std::condition_variable nobody_waits_;  // for the end of a call: it may still run after its unregistration
  std::map<Key, Followed> followed_;
  std::map<std::uint64_t, Key> keys_;
  std::uint64_t last_token_ = 0;
};

}  // namespace

std::uint64_t registerAvailabilityHandler(const ServiceInstance& service, std::function<void(bool available)> handler) {
  return AvailabilityTable::Get().Register(service, std::move(handler));
}

void unregisterAvailabilityHandler(std::uint64_t token) { AvailabilityTable::Get().Unregister(token); }

}  // namespace ara::com::internal::vsomeip::common
