#include "platform/vsomeipbinding/someip_binding.h"

#include <memory>
#include <utility>
#include <vector>

#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "platform/include/binding_registration.h"
#include "platform/include/runtime.h"
#include "platform/include/transport_identifier.h"
#include "platform/vsomeipbinding/service_libraries.h"
#include "platform/vsomeipbinding/stack_thread.h"

namespace ara::com::internal::vsomeip::runtime {

void SomeIpBinding::Init() { StackThread::Get().Start(); }

ServiceWatch* SomeIpBinding::Watch(std::uint16_t araServiceId) {
  const auto* mapping = FindMapping(araServiceId);
  if (mapping == nullptr) {
    return nullptr;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = watches_.find(araServiceId);
  if (found != watches_.end()) {
    return found->second;
  }
  return watches_.emplace(araServiceId, new ServiceWatch(*mapping)).first->second;
}

InstanceIdentifierContainer SomeIpBinding::FindService(std::uint16_t araServiceId, const InstanceIdentifier& instance) {
  ServiceWatch* watch = Watch(araServiceId);
  return watch != nullptr ? watch->Find(instance) : InstanceIdentifierContainer();
}

std::uint64_t SomeIpBinding::StartFindService(std::uint16_t araServiceId, const InstanceIdentifier& instance,
                                              std::function<void(InstanceIdentifierContainer)> handler) {
  ServiceWatch* watch = Watch(araServiceId);
  if (watch == nullptr) {
    return 0;
  }
  const std::uint64_t id = ++last_search_;
  watch->AddSearch(id, instance, std::move(handler));
  return id;
}

void SomeIpBinding::StopFindService(std::uint64_t search) {
  std::vector<ServiceWatch*> watches;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [service, watch] : watches_) {
      watches.push_back(watch);
    }
  }
  for (ServiceWatch* watch : watches) {
    if (const auto taken = watch->TakeSearch(search)) {
      taken->Stop();
      return;
    }
  }
}

std::shared_ptr<internal::proxy::ProxyFactory> SomeIpBinding::GetProxyFactory(std::uint16_t araServiceId,
                                                                              const InstanceIdentifier& instance) {
  const auto* mapping = FindMapping(araServiceId);
  const auto instance_id = common::ToTransportIdentifier(instance);
  return mapping != nullptr && instance_id ? mapping->GetProxy(*instance_id) : nullptr;
}

std::optional<InstanceIdentifier> SomeIpBinding::Canonical(const InstanceIdentifier& instance) {
  const auto instance_id = common::ToTransportIdentifier(instance);
  return instance_id ? std::make_optional(common::FromTransportIdentifier(*instance_id)) : std::nullopt;
}

std::unique_ptr<internal::skeleton::ServiceImplBase> SomeIpBinding::OfferService(
    internal::skeleton::ServiceBase& service, std::uint16_t araServiceId, const InstanceIdentifier& instance) {
  const auto* mapping = FindMapping(araServiceId);
  const auto instance_id = common::ToTransportIdentifier(instance);
  return mapping != nullptr && instance_id ? mapping->GetSkeleton(service, *instance_id) : nullptr;
}

void Register() {
  static const bool registered = [] {
    Runtime::RegisterBinding(std::make_unique<SomeIpBinding>());
    return true;
  }();
  static_cast<void>(registered);
}

namespace {

/// Makes the binding known when the library is loaded.
[[maybe_unused]] const bool registered_on_load = (Register(), true);

}  // namespace

}  // namespace ara::com::internal::vsomeip::runtime
