#include "interfaces/chargetimemanager/chargetimemanager_impl.h"
#include "interfaces/energysystem/energysystem_impl.h"
#include "interfaces/psd2/psd2_service_adapter.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_impl.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_service_adapter.h"
#include "registry/service_mapping_impl.h"

/// The registry entries of this library's services.
namespace ara::com::internal::vsomeip::runtime {

namespace {

template <typename Service, typename Proxy, typename Adapter>
using Entry = ServiceMappingImpl<Service::ara_service_id, Service::service_id, Service::major_version,
                                 Service::minor_version, Service::required_minor_version, Service::minimum_minor_policy,
                                 Service::blacklisted_version_count, Service::blacklisted_versions, Proxy, Adapter>;

namespace psd2 = kro::services::psd2::psd2_binding::vsomeip;
namespace routebasedenergycontents = kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip;
namespace energysystem = kro::services::energysystem::energysystem_binding::vsomeip;
namespace routebasedconsumption = kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip;
namespace chargetimemanager = kro::services::chargetimemanager::chargetimemanager_binding::vsomeip;

const Entry<psd2::descriptors::internal::Service, NoProxy, psd2::Psd2ServiceAdapter> psd2_entry;
const Entry<routebasedenergycontents::descriptors::internal::Service, NoProxy,
            routebasedenergycontents::RouteBasedEnergyContentsServiceAdapter>
    routebasedenergycontents_entry;
const Entry<energysystem::descriptors::internal::Service, energysystem::EnergySystemImpl, NoAdapter> energysystem_entry;
const Entry<routebasedconsumption::descriptors::internal::Service, routebasedconsumption::RouteBasedConsumptionImpl,
            NoAdapter>
    routebasedconsumption_entry;
const Entry<chargetimemanager::descriptors::internal::Service, chargetimemanager::ChargeTimeManagerImpl, NoAdapter>
    chargetimemanager_entry;

const VSomeIPServiceMapping::Mapping* const entries[] = {&psd2_entry, &routebasedenergycontents_entry,
                                                         &energysystem_entry, &routebasedconsumption_entry,
                                                         &chargetimemanager_entry};

}  // namespace

const VSomeIPServiceMapping::Mapping* AraComVSomeIPServiceMapping::GetMappingForServiceId(std::uint16_t araServiceId) {
  for (const auto* const entry : entries) {
    if (entry->GetServiceId() == araServiceId) {
      return entry;
    }
  }
  return nullptr;
}

VSomeIPServiceMapping::MultiMapping AraComVSomeIPServiceMapping::GetMappingForVSomeIPServiceId(
    std::uint16_t someipServiceId) {
  VSomeIPServiceMapping::MultiMapping mappings;
  for (const auto* const entry : entries) {
    if (entry->GetVSomeIPService() == someipServiceId) {
      mappings.InsertMapping(entry);
    }
  }
  return mappings;
}

}  // namespace ara::com::internal::vsomeip::runtime
