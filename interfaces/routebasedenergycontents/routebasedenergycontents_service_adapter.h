// Written by scripts/generate from interfaces/model/routebasedenergycontents.json.
#pragma once

#include "ara/com/internal/vsomeip/skeleton/service_adapter.h"
#include "core_types/visibility.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_descriptors.h"

namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip {

/// Serves one offered instance over SOME/IP.
class TARN7_EXPORT RouteBasedEnergyContentsServiceAdapter final
    : public ara::com::internal::vsomeip::skeleton::ServiceAdapter<skeleton::RouteBasedEnergyContentsSkeleton,
                                                                   descriptors::Interface> {
 public:
  RouteBasedEnergyContentsServiceAdapter(skeleton::RouteBasedEnergyContentsSkeleton& skeleton,
                                         std::uint16_t instanceId);
  ~RouteBasedEnergyContentsServiceAdapter() override;
};

}  // namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip
