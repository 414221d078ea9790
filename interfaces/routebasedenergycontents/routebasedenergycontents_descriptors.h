#pragma once

#include "ara/com/internal/vsomeip/common/service_descriptor.h"

/// The identity of the routebasedenergycontents interface.
namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 40160, SOME/IP service 0x606F, version 1.1.
struct Service : common::ServiceDescriptor<40160, 0x606F, 1, 1> {
  static constexpr const char* name = "routebasedenergycontents";
  static constexpr const char* meta_model_path = "/kro/services/routebasedenergycontents/RouteBasedEnergyContents";
};
}  // namespace internal

}  // namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors
