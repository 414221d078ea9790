#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>

#include "platform/include/service_binding.h"
#include "platform/vsomeipbinding/service_watch.h"

namespace ara::com::internal::vsomeip::runtime {

/// The SOME/IP binding as the communication runtime sees it: services are those that the loaded libraries have
/// registered, instances those that the stack's discovery reports.
class SomeIpBinding final : public ServiceBinding {
 public:
  void Init() override;
  InstanceIdentifierContainer FindService(std::uint16_t araServiceId, const InstanceIdentifier& instance) override;
  std::uint64_t StartFindService(std::uint16_t araServiceId, const InstanceIdentifier& instance,
                                 std::function<void(InstanceIdentifierContainer)> handler) override;
  void StopFindService(std::uint64_t search) override;
  std::shared_ptr<internal::proxy::ProxyFactory> GetProxyFactory(std::uint16_t araServiceId,
                                                                 const InstanceIdentifier& instance) override;
  std::optional<InstanceIdentifier> Canonical(const InstanceIdentifier& instance) override;
  std::unique_ptr<internal::skeleton::ServiceImplBase> OfferService(internal::skeleton::ServiceBase& service,
                                                                    std::uint16_t araServiceId,
                                                                    const InstanceIdentifier& instance) override;

 private:
  /// The watch of a service, which begins with the first call for it; null for an unknown service.
  ServiceWatch* Watch(std::uint16_t araServiceId);

  std::mutex mutex_;  // guards watches_
  std::map<std::uint16_t, ServiceWatch*> watches_;
  std::atomic<std::uint64_t> last_search_{0};
};

}  // namespace ara::com::internal::vsomeip::runtime
