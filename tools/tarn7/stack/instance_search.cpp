#include "tools/tarn7/stack/instance_search.h"

namespace tarn7::tool {

InstanceSearch::InstanceSearch(Loop& loop, const std::vector<const Interface*>& interfaces, Changed changed)
    : changes_(loop,
               [this, changed = std::move(changed)](const InstanceChanges::Instance& instance, bool found) {
                 const auto& [interface, id] = instance;
                 const bool hasRightVersion =
                     found && application_->is_available(interface->service_id, id, interface->major_version,
                                                         vsomeip::ANY_MINOR);
                 changed({*interface, id, found, hasRightVersion});
               }),
      application_("tarn7-search") {
  for (const Interface* interface : interfaces) {
    application_->register_availability_handler(
        interface->service_id, vsomeip::ANY_INSTANCE,
        [this, interface](vsomeip::service_t, vsomeip::instance_t instance, bool available) {
          if (instance != vsomeip::ANY_INSTANCE) {  // what stacks may answer the registration with says nothing
            changes_.Report({interface, instance}, available);
          }
        },
        vsomeip::ANY_MAJOR, vsomeip::ANY_MINOR);
    application_->request_service(interface->service_id, vsomeip::ANY_INSTANCE, vsomeip::ANY_MAJOR, vsomeip::ANY_MINOR);
  }
}

}  // namespace tarn7::tool
