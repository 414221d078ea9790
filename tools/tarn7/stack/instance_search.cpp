#include "tools/tarn7/stack/instance_search.h"

namespace tarn7::tool {

InstanceSearch::InstanceSearch(Loop& loop, const std::vector<const Interface*>& interfaces, Changed changed)
    : changed_(std::move(changed)), application_("tarn7-search") {
  for (const Interface* interface : interfaces) {
    application_->register_availability_handler(
        interface->service_id, vsomeip::ANY_INSTANCE,
        [this, &loop, interface](vsomeip::service_t, vsomeip::instance_t instance, bool available) {
          loop.Post([this, interface, instance, available] { Report(*interface, instance, available); });
        },
        vsomeip::ANY_MAJOR, vsomeip::ANY_MINOR);
    application_->request_service(interface->service_id, vsomeip::ANY_INSTANCE, vsomeip::ANY_MAJOR, vsomeip::ANY_MINOR);
  }
}

void InstanceSearch::Report(const Interface& interface, std::uint16_t instance, bool found) {
  if (instance == vsomeip::ANY_INSTANCE) {
    return;  // stacks may answer the registration for any instance with that; it says nothing
  }
  const std::pair<const Interface*, std::uint16_t> key(&interface, instance);
  if (found ? found_.insert(key).second : found_.erase(key) != 0) {
    const bool hasRightVersion = found && application_->is_available(interface.service_id, instance,
                                                                     interface.major_version, vsomeip::ANY_MINOR);
    changed_({interface, instance, found, hasRightVersion});
  }
}

}  // namespace tarn7::tool
