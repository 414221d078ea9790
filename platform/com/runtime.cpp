#include "platform/include/runtime.h"

#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "core_types/com_error_domain.h"
#include "platform/com/service_offers.h"
#include "platform/include/service_binding.h"
#include "registry/proxy_factory.h"

namespace ara::com::internal {

namespace {

/// A search that StartFindService began, and who carries it out.
struct Search {
  std::mutex mutex;  // guards the members below
  bool stopped = false;
  ServiceBinding* binding = nullptr;  // null until the binding has answered
  std::uint64_t id = 0;
};

/// The runtime's memory. Bindings are never removed, so pointers to them may be used without the lock.
class State {
 public:
  /// Never destroyed: searches are stopped by destructors of static objects too.
  static State& Get() {
    static State& state = *new State;
    return state;
  }

  void AddBinding(std::unique_ptr<ServiceBinding> binding) {
    const std::lock_guard<std::mutex> lock(mutex_);
    bindings_.push_back(std::move(binding));
  }

  std::vector<ServiceBinding*> Bindings() {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<ServiceBinding*> bindings;
    for (const auto& binding : bindings_) {
      bindings.push_back(binding.get());
    }
    return bindings;
  }

  FindServiceHandle AddSearch(std::shared_ptr<Search> search) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const FindServiceHandle handle(++last_search_);
    searches_.emplace(handle, std::move(search));
    return handle;
  }

  ServiceOffers& Offers() { return offers_; }

  /// The search, which is forgotten; null when there is none (any more).
  std::shared_ptr<Search> TakeSearch(FindServiceHandle handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto node = searches_.extract(handle);
    return node.empty() ? nullptr : node.mapped();
  }

 private:
  ServiceOffers offers_;

  std::mutex mutex_;  // guards the members below
  std::vector<std::unique_ptr<ServiceBinding>> bindings_;
  std::map<FindServiceHandle, std::shared_ptr<Search>> searches_;
  std::uint64_t last_search_ = 0;
};

bool IsStopped(Search& search) {
  const std::lock_guard<std::mutex> lock(search.mutex);
  return search.stopped;
}

/// Hands the search to the first binding that knows the service. False when none does.
bool Start(const std::shared_ptr<Search>& search, std::uint16_t araServiceId, const InstanceIdentifier& instance,
           const std::function<void(InstanceIdentifierContainer)>& handler) {
  for (ServiceBinding* binding : State::Get().Bindings()) {
    const std::uint64_t id = binding->StartFindService(araServiceId, instance, handler);
    if (id == 0) {
      continue;
    }
    bool stopped = false;
    {
      const std::lock_guard<std::mutex> lock(search->mutex);
      search->binding = binding;
      search->id = id;
      stopped = search->stopped;
    }
    if (stopped) {  // by the handler, before the binding's answer was here
      binding->StopFindService(id);
    }
    return true;
  }
  return false;
}

}  // namespace

void Runtime::Init() {
  for (ServiceBinding* binding : State::Get().Bindings()) {
    binding->Init();
  }
}

void Runtime::RegisterBinding(std::unique_ptr<ServiceBinding> binding) { State::Get().AddBinding(std::move(binding)); }

InstanceIdentifierContainer Runtime::FindService(std::uint16_t araServiceId, const InstanceIdentifier& instance) {
  for (ServiceBinding* binding : State::Get().Bindings()) {
    InstanceIdentifierContainer found = binding->FindService(araServiceId, instance);
    if (!found.empty()) {
      return found;
    }
  }
  return {};
}

FindServiceHandle Runtime::StartFindService(std::uint16_t araServiceId, const InstanceIdentifier& instance,
                                            FindServiceHandler<InstanceIdentifier> handler) {
  const auto search = std::make_shared<Search>();
  const FindServiceHandle handle = State::Get().AddSearch(search);
  try {
    const bool known = Start(search, araServiceId, instance,
                             [search, handle, handler = std::move(handler)](InstanceIdentifierContainer instances) {
                               if (!IsStopped(*search)) {
                                 handler(std::move(instances), handle);
                               }
                             });
    if (!known) {
      MakeErrorCode(ComErrc::kServiceNotAvailable).ThrowAsException();
    }
  } catch (...) {
    State::Get().TakeSearch(handle);
    throw;
  }
  return handle;
}

void Runtime::StopFindService(FindServiceHandle handle) {
  const std::shared_ptr<Search> search = State::Get().TakeSearch(handle);
  if (search == nullptr) {
    return;
  }
  ServiceBinding* binding = nullptr;
  std::uint64_t id = 0;
  {
    const std::lock_guard<std::mutex> lock(search->mutex);
    search->stopped = true;
    binding = search->binding;
    id = search->id;
  }
  if (binding != nullptr) {
    binding->StopFindService(id);
  }
}

std::unique_ptr<proxy::ProxyBindingBase> Runtime::CreateProxy(std::uint16_t araServiceId,
                                                              const InstanceIdentifier& instance) {
  for (ServiceBinding* binding : State::Get().Bindings()) {
    if (const auto factory = binding->GetProxyFactory(araServiceId, instance)) {
      return factory->Create();
    }
  }
  return nullptr;
}

void Runtime::OfferService(skeleton::ServiceBase& service, std::uint16_t araServiceId, InstanceIdentifier instance) {
  if (!State::Get().Offers().Offer(service, araServiceId, instance, State::Get().Bindings())) {
    MakeErrorCode(ComErrc::kServiceNotAvailable).ThrowAsException();
  }
}

void Runtime::StopOfferService(skeleton::ServiceBase& service, std::uint16_t araServiceId) {
  State::Get().Offers().Stop(service, araServiceId);
}

}  // namespace ara::com::internal
