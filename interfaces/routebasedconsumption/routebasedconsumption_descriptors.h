#pragma once

#include "ara/com/internal/vsomeip/common/service_descriptor.h"

/// The identity of the routebasedconsumption interface.
namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 27103, SOME/IP service 0x604A, version 2.0.
struct Service : common::ServiceDescriptor<27103, 0x604A, 2, 0> {
  static constexpr const char* name = "routebasedconsumption";
  static constexpr const char* meta_model_path = "/kro/services/routebasedconsumption/RouteBasedConsumption";
};
}  // namespace internal

}  // namespace kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors
