#include "tools/tarn7/stack/stack_service_client.h"

#include <utility>

#include "tools/tarn7/stack/stack_field_client.h"

namespace tarn7::tool {

StackServiceClient::StackServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed)
    : ServiceClient(loop, interface, instance, std::move(changed)),
      interface_(interface),
      instance_(instance),
      application_("tarn7-client") {
  application_->register_availability_handler(
      interface.service_id, instance, [this](auto, auto, bool available) { ReportFound(available); },
      interface.major_version, vsomeip::ANY_MINOR);
  application_->request_service(interface.service_id, instance, interface.major_version, vsomeip::ANY_MINOR);
}

std::unique_ptr<FieldClient> StackServiceClient::Connect(const Field& field) {
  return std::make_unique<StackFieldClient>(*this, field);
}

}  // namespace tarn7::tool
