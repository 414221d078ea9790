// Written by scripts/generate from interfaces/model.
#pragma once

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "interfaces/chargetimemanager/chargetimemanager_descriptors.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "interfaces/psd2/psd2_descriptors.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_descriptors.h"

namespace kro::services {

/// The interfaces of which the library is the client.
using ConsumedInterfaces = ara::com::internal::vsomeip::common::TypeList<
    chargetimemanager::chargetimemanager_binding::vsomeip::descriptors::Interface,
    energysystem::energysystem_binding::vsomeip::descriptors::Interface,
    routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors::Interface>;

/// The interfaces of which the library is the server.
using ProvidedInterfaces = ara::com::internal::vsomeip::common::TypeList<
    psd2::psd2_binding::vsomeip::descriptors::Interface,
    routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors::Interface>;

}  // namespace kro::services
