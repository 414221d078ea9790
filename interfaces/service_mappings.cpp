// Written by scripts/generate from interfaces/model.
#include "interfaces/chargetimemanager/chargetimemanager_impl.h"
#include "interfaces/energysystem/energysystem_impl.h"
#include "interfaces/interface_list.h"
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

namespace chargetimemanager = kro::services::chargetimemanager::chargetimemanager_binding::vsomeip;
namespace energysystem = kro::services::energysystem::energysystem_binding::vsomeip;
namespace psd2 = kro::services::psd2::psd2_binding::vsomeip;
namespace routebasedconsumption = kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip;
namespace routebasedenergycontents = kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip;

const Entry<chargetimemanager::descriptors::internal::Service, chargetimemanager::ChargeTimeManagerImpl, NoAdapter>
    chargetimemanager_entry;
const Entry<energysystem::descriptors::internal::Service, energysystem::EnergySystemImpl, NoAdapter> energysystem_entry;
const Entry<psd2::descriptors::internal::Service, NoProxy, psd2::Psd2ServiceAdapter> psd2_entry;
const Entry<routebasedconsumption::descriptors::internal::Service, routebasedconsumption::RouteBasedConsumptionImpl,
            NoAdapter>
    routebasedconsumption_entry;
const Entry<routebasedenergycontents::descriptors::internal::Service, NoProxy,
            routebasedenergycontents::RouteBasedEnergyContentsServiceAdapter>
    routebasedenergycontents_entry;

constexpr const VSomeIPServiceMapping::Mapping* EntryOfServiceId(std::uint16_t araServiceId) {
  switch (araServiceId) {
    case chargetimemanager::descriptors::internal::Service::ara_service_id:
      return &chargetimemanager_entry;
    case energysystem::descriptors::internal::Service::ara_service_id:
      return &energysystem_entry;
    case psd2::descriptors::internal::Service::ara_service_id:
      return &psd2_entry;
    case routebasedconsumption::descriptors::internal::Service::ara_service_id:
      return &routebasedconsumption_entry;
    case routebasedenergycontents::descriptors::internal::Service::ara_service_id:
      return &routebasedenergycontents_entry;
    default:
      return nullptr;
  }
}

constexpr const VSomeIPServiceMapping::Mapping* EntryOfVSomeIPServiceId(std::uint16_t someipServiceId) {
  switch (someipServiceId) {
    case chargetimemanager::descriptors::internal::Service::service_id:
      return &chargetimemanager_entry;
    case energysystem::descriptors::internal::Service::service_id:
      return &energysystem_entry;
    case psd2::descriptors::internal::Service::service_id:
      return &psd2_entry;
    case routebasedconsumption::descriptors::internal::Service::service_id:
      return &routebasedconsumption_entry;
    case routebasedenergycontents::descriptors::internal::Service::service_id:
      return &routebasedenergycontents_entry;
    default:
      return nullptr;
  }
}

/// Whether both lookups know each interface of a list, as the same entry.
template <typename... Interfaces>
constexpr bool AreRegistered(common::TypeList<Interfaces...>) {
  return (true && ... &&
          (EntryOfServiceId(Interfaces::Service::ara_service_id) != nullptr &&
           EntryOfServiceId(Interfaces::Service::ara_service_id) ==
               EntryOfVSomeIPServiceId(Interfaces::Service::service_id)));
}
static_assert(AreRegistered(kro::services::ConsumedInterfaces{}) && AreRegistered(kro::services::ProvidedInterfaces{}),
              "each interface of interface_list.h needs an entry here, under both its ids");

}  // namespace

const VSomeIPServiceMapping::Mapping* AraComVSomeIPServiceMapping::GetMappingForServiceId(std::uint16_t araServiceId) {
  return EntryOfServiceId(araServiceId);
}

VSomeIPServiceMapping::MultiMapping AraComVSomeIPServiceMapping::GetMappingForVSomeIPServiceId(
    std::uint16_t someipServiceId) {
  VSomeIPServiceMapping::MultiMapping mappings;
  if (const auto* const entry = EntryOfVSomeIPServiceId(someipServiceId)) {
    mappings.InsertMapping(entry);
  }
  return mappings;
}

}  // namespace ara::com::internal::vsomeip::runtime
