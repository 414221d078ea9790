#include "tools/tarn7/client/service_client.h"

#include <utility>

#include "tools/tarn7/error.h"

namespace tarn7::tool {

ServiceClient::ServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed)
    : loop_(loop),
      instance_(&interface, instance),
      changes_(loop, [this, changed = std::move(changed)](auto, bool found) {
        found_ = found;
        if (changed) {
          changed(found);
        }
      }) {}

void ServiceClient::Wait(Loop::TimePoint deadline) {
  if (!loop_.RunUntil(deadline, [this] { return found_; })) {
    throw CommandError(Status::kUnavailable,
                       instance_.first->name + ", instance " + std::to_string(instance_.second) + " is not offered");
  }
}

}  // namespace tarn7::tool
