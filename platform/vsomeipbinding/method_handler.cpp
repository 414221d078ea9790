#include "platform/include/method_handler.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

#include "ara/com/internal/vsomeip/common/shared_vector.h"
#include "platform/vsomeipbinding/stack_thread.h"

namespace ara::com::internal::vsomeip::common {

namespace {

bool IsDead(const MethodHandler& handler) {
  const auto* weak = handler.target<WeakMethodHandler>();
  return weak != nullptr && weak->expired();
}

/// The handlers of one method of one service instance.
struct Method {
  SharedVector<MethodHandler> handlers;
  /// Registrations that have not been taken back. Which handler an unregistration means is not said: so the handlers
  /// may be more than that, until the objects of those that are too many are gone.
  std::size_t count = 0;

  void Prune() {
    if (std::any_of(handlers.Get().begin(), handlers.Get().end(), IsDead)) {
      auto& alive = handlers.Change();
      alive.erase(std::remove_if(alive.begin(), alive.end(), IsDead), alive.end());
    }
  }
};

class MethodTable {
 public:
  /// Never destroyed: static proxies take their registrations back at any time, and the stack may be dispatching.
  static MethodTable& Get() {
    static MethodTable& table = *new MethodTable;
    return table;
  }

  void Register(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId, MethodHandler handler) {
    const auto application = runtime::StackThread::Get().Start();
    const std::lock_guard<std::mutex> lock(mutex_);
    auto found = methods_.find({serviceId, instanceId, methodId});
    if (found == methods_.end()) {
      const auto method = std::make_shared<Method>();
      application->register_message_handler(
          serviceId, instanceId, methodId,
          [this, method](const std::shared_ptr<::vsomeip::message>& message) { Dispatch(*method, message); });
      found = methods_.emplace(Key{serviceId, instanceId, methodId}, method).first;
    }
    found->second->handlers.Change().push_back(std::move(handler));
    ++found->second->count;
  }

  void Unregister(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId) {
    std::shared_ptr<const std::vector<MethodHandler>> dropped;  // destroyed without the lock: handlers may own objects
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = methods_.find({serviceId, instanceId, methodId});
    if (found == methods_.end()) {
      return;
    }
    Method& method = *found->second;
    if (--method.count != 0) {
      // Only when most may be dead, so that the list is not looked through for each of many that go one by one.
      if (method.handlers.Get().size() > 2 * method.count) {
        method.Prune();
      }
      return;
    }
    dropped = method.handlers.Share();
    method.handlers = {};  // messages that are already on their way find no handler any more
    methods_.erase(found);
    if (const auto application = runtime::StackThread::Get().Running()) {
      application->unregister_message_handler(serviceId, instanceId, methodId);
    }
  }

 private:
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;

  void Dispatch(Method& method, const std::shared_ptr<::vsomeip::message>& message) {
    std::shared_ptr<const std::vector<MethodHandler>> handlers;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (method.handlers.Get().size() > method.count) {
        method.Prune();
      }
      handlers = method.handlers.Share();
    }
    for (const MethodHandler& handler : *handlers) {
      handler(message);
    }
  }

  // Guards methods_ and what they point to. Held while the stack is told, so that it hears of the first registration
  // and the end of the last in their order; the stack never calls back from within.
  std::mutex mutex_;
  std::map<Key, std::shared_ptr<Method>> methods_;
};

}  // namespace

// The stack has one handler per method, whichever side it is for: both sides share the list, and each handler tells by
// the message's type whether it is meant.
void registerMethodHandler(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId,
                           MethodHandler handler, bool /*isField*/) {
  MethodTable::Get().Register(serviceId, instanceId, methodId, std::move(handler));
}

void unregisterMethodHandler(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId,
                             bool /*isField*/) {
  MethodTable::Get().Unregister(serviceId, instanceId, methodId);
}

}  // namespace ara::com::internal::vsomeip::common
