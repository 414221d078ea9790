// Written by scripts/generate from interfaces/model/routebasedenergycontents.json.
#pragma once

#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/common/service_descriptor.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

/// The identity of the routebasedenergycontents interface and of its fields.
namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 40160, SOME/IP service 0x606F, version 1.1.
struct Service : common::ServiceDescriptor<40160, 0x606F, 1, 1> {
  static constexpr const char* name = "routebasedenergycontents";
  static constexpr const char* meta_model_path = "/kro/services/routebasedenergycontents/RouteBasedEnergyContents";
};
}  // namespace internal

template <std::uint16_t GetterMethodId, typename Record>
using Field = common::FieldDescriptor<internal::Service, GetterMethodId, std::vector<Record>>;

struct destinations : Field<0x4040, datatypes::DT_destinations_struct> {
  static constexpr const char* name = "destinations";
  static constexpr auto skeleton_field = &skeleton::RouteBasedEnergyContentsSkeleton::destinations;
};
struct rangeOnRouteValues : Field<0x4020, datatypes::DT_rangeOnRouteValues_struct> {
  static constexpr const char* name = "rangeOnRouteValues";
  static constexpr auto skeleton_field = &skeleton::RouteBasedEnergyContentsSkeleton::rangeOnRouteValues;
};
struct routeBasedResidualEnergyValues : Field<0x4030, datatypes::DT_routeBasedResidualEnergyValues_struct> {
  static constexpr const char* name = "routeBasedResidualEnergyValues";
  static constexpr auto skeleton_field = &skeleton::RouteBasedEnergyContentsSkeleton::routeBasedResidualEnergyValues;
};
struct rwmStatus : Field<0x4010, datatypes::DT_rwmStatus_struct> {
  static constexpr const char* name = "rwmStatus";
  static constexpr auto skeleton_field = &skeleton::RouteBasedEnergyContentsSkeleton::rwmStatus;
};
struct targetSocChargings : Field<0x4050, datatypes::DT_targetSocChargings_struct> {
  static constexpr const char* name = "targetSocChargings";
  static constexpr auto skeleton_field = &skeleton::RouteBasedEnergyContentsSkeleton::targetSocChargings;
};

/// The interface as a whole.
struct Interface {
  using Service = internal::Service;
  using Skeleton = skeleton::RouteBasedEnergyContentsSkeleton;
  /// In the order of the skeleton and the adapter.
  using Fields =
      common::TypeList<destinations, rangeOnRouteValues, routeBasedResidualEnergyValues, rwmStatus, targetSocChargings>;
  /// In the order in which an offer looks for a missing value.
  using CheckOrder =
      common::TypeList<rwmStatus, rangeOnRouteValues, routeBasedResidualEnergyValues, destinations, targetSocChargings>;
};

}  // namespace kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors
