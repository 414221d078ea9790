#include "tools/tarn7/client/service_search.h"

#include <stdexcept>
#include <utility>

#include "platform/include/runtime.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

using ara::com::internal::Runtime;

ServiceSearch::ServiceSearch(Loop& loop, const Interface& interface, std::uint16_t instance,
                             std::function<void(bool)> changed)
    : loop_(loop), name_(interface.name + ", instance " + std::to_string(instance)), changed_(std::move(changed)) {
  Runtime::Init();
  search_ = Runtime::StartFindService(interface.ara_service_id, std::to_string(instance),
                                      [this](const auto& instances, ara::com::FindServiceHandle) {
                                        loop_.Post([this, found = !instances.empty()] {
                                          found_ = found;
                                          if (changed_) {
                                            changed_(found);
                                          }
                                        });
                                      });
}

ServiceSearch::~ServiceSearch() { Runtime::StopFindService(search_); }

void ServiceSearch::Wait(Loop::TimePoint deadline) {
  if (!loop_.RunUntil(deadline, [this] { return found_; })) {
    throw CommandError(Status::kUnavailable, name_ + " is not offered");
  }
}

std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> MakeProxy(const Interface& interface,
                                                                       std::uint16_t instance) {
  Runtime::Init();
  auto binding = Runtime::CreateProxy(interface.ara_service_id, std::to_string(instance));
  if (binding == nullptr) {
    throw std::runtime_error("the platform has no binding for " + interface.name);
  }
  return binding;
}

}  // namespace tarn7::tool
