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

/// One registration. What it was told last is its own, so that a newcomer hears of a state that the others know.
struct Follower {
  explicit Follower(const std::function<void(bool)>& handler) {
    auto shared = std::make_shared<const std::function<void(bool)>>(handler);
    calls.Set(shared);
  }

  // A change is told in its turn, also where a thread that tells an earlier one to several followers is held up by one
  // of them: whoever comes first tells both.
  proxy::HandlerCalls<bool> calls;
  bool available = false;
};

class AvailabilityTable {
 public:
  /// Never destroyed: static proxies take their registrations back at any time, and the stack may be calling.
  static AvailabilityTable& Get() {
    static AvailabilityTable& table = *new AvailabilityTable;
    return table;
  }

  std::uint64_t Register(const ServiceInstance& service, const std::function<void(bool)>& handler) {
    const auto application = runtime::StackThread::Get().Start();
    const Key key{service.service, service.instance, service.major};
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::uint64_t token = ++last_token_;
    followers_[key].emplace(token, std::make_shared<Follower>(handler));
    keys_.emplace(token, key);
    // Every registration with the stack is answered with the present state, on a thread of the stack: so it is
    // repeated for each follower.
    application->register_availability_handler(
        service.service, service.instance,
        ::vsomeip::availability_handler_t([this, key](::vsomeip::service_t, ::vsomeip::instance_t, bool available) {
          OnAvailability(key, available);
        }),
        service.major, ::vsomeip::ANY_MINOR);
    return token;
  }

  void Unregister(std::uint64_t token) {
    std::shared_ptr<Follower> dropped;  // destroyed without the lock: a handler may own objects
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = keys_.find(token);
    if (found == keys_.end()) {
      return;
    }
    const Key key = found->second;
    keys_.erase(found);
    dropped = followers_[key].extract(token).mapped();
    if (!followers_[key].empty()) {
      return;
    }
    followers_.erase(key);
    if (const auto application = runtime::StackThread::Get().Running()) {
      application->unregister_availability_handler(std::get<0>(key), std::get<1>(key), std::get<2>(key),
                                                   ::vsomeip::ANY_MINOR);
    }
  }

 private:
  void OnAvailability(const Key& key, bool available) {
    std::vector<std::shared_ptr<Follower>> concerned;
    std::unique_lock<std::mutex> lock(mutex_);
    const auto found = followers_.find(key);
    if (found == followers_.end()) {
      return;
    }
    for (const auto& [token, follower] : found->second) {
      if (std::exchange(follower->available, available) != available) {
        follower->calls.Add(available);
        concerned.push_back(follower);
      }
    }
    for (const auto& follower : concerned) {
      follower->calls.Make(lock, nobody_waits_);
    }
  }

  // Guards the members below and the followers' states. Held while the stack is told; the stack never calls back from
  // within.
  std::mutex mutex_;
  std::condition_variable nobody_waits_;  // for the end of a call: it may still run after its unregistration
  std::map<Key, std::map<std::uint64_t, std::shared_ptr<Follower>>> followers_;
  std::map<std::uint64_t, Key> keys_;
  std::uint64_t last_token_ = 0;
};

}  // namespace

std::uint64_t registerAvailabilityHandler(const ServiceInstance& service, std::function<void(bool available)> handler) {
  return AvailabilityTable::Get().Register(service, handler);
}

void unregisterAvailabilityHandler(std::uint64_t token) { AvailabilityTable::Get().Unregister(token); }

}  // namespace ara::com::internal::vsomeip::common
