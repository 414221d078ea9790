#include "tools/tarn7/client/service_client.h"

#include <utility>

#include "tools/tarn7/error.h"

namespace tarn7::tool {

ServiceClient::ServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed)
    : loop_(loop), name_(interface.name + ", instance " + std::to_string(instance)), changed_(std::move(changed)) {}

void ServiceClient::Wait(Loop::TimePoint deadline) {
  if (!loop_.RunUntil(deadline, [this] { return found_; })) {
    throw CommandError(Status::kUnavailable, name_ + " is not offered");
  }
}

void ServiceClient::ReportFound(bool found) {
  loop_.Post([this, found] {
    found_ = found;
    if (changed_) {
      changed_(found);
    }
  });
}

}  // namespace tarn7::tool
