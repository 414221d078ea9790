#include "tools/tarn7/library/proxy_service_client.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "platform/include/runtime.h"
#include "tools/tarn7/library/consumed_fields.h"

namespace tarn7::tool {

using ara::com::internal::Runtime;

ProxyServiceClient::ProxyServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed)
    : ServiceClient(loop, interface, instance, std::move(changed)), interface_(interface) {
  Runtime::Init();
  binding_ = Runtime::CreateProxy(interface.ara_service_id, std::to_string(instance));
  if (binding_ == nullptr) {
    throw std::runtime_error("the platform has no binding for " + interface.name);
  }
  search_ = Runtime::StartFindService(
      interface.ara_service_id, std::to_string(instance),
      [this](const auto& instances, ara::com::FindServiceHandle) { ReportFound(!instances.empty()); });
}

ProxyServiceClient::~ProxyServiceClient() { Runtime::StopFindService(search_); }

std::unique_ptr<FieldClient> ProxyServiceClient::Connect(const Field& field) {
  return ConnectField({&interface_, &field}, binding_);
}

}  // namespace tarn7::tool
