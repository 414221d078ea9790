// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/common/service_descriptor.h"
#include "interfaces/psd2/psd2_skeleton.h"

/// The identity of the psd2 interface and of its fields.
namespace kro::services::psd2::psd2_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 9235, SOME/IP service 0x6122, version 6.0.
struct Service : common::ServiceDescriptor<9235, 0x6122, 6, 0> {
  static constexpr const char* name = "psd2";
  static constexpr const char* meta_model_path = "/kro/services/psd2/Psd2";
};
}  // namespace internal

template <std::uint16_t GetterMethodId, typename Record>
using Field = common::FieldDescriptor<internal::Service, GetterMethodId, std::vector<Record>>;

struct automatedParkingLayer : Field<0x4070, datatypes::DT_automatedParkingLayer_struct> {
  static constexpr const char* name = "automatedParkingLayer";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::automatedParkingLayer;
};
struct dynamicContentLayer : Field<0x4060, datatypes::DT_dynamicContentLayer_struct> {
  static constexpr const char* name = "dynamicContentLayer";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::dynamicContentLayer;
};
struct egoPositionLayer : Field<0x4050, datatypes::DT_egoPositionLayer_struct> {
  static constexpr const char* name = "egoPositionLayer";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::egoPositionLayer;
};
struct laneLayer : Field<0x4030, datatypes::DT_laneLayer_struct> {
  static constexpr const char* name = "laneLayer";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::laneLayer;
};
struct linkLayerLongRange : Field<0x4010, datatypes::DT_linkLayerLongRange_struct> {
  static constexpr const char* name = "linkLayerLongRange";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::linkLayerLongRange;
};
struct linkLayerShortRange : Field<0x4020, datatypes::DT_linkLayerShortRange_struct> {
  static constexpr const char* name = "linkLayerShortRange";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::linkLayerShortRange;
};
struct positioningObjectsLayer : Field<0x4040, datatypes::DT_positioningObjectsLayer_struct> {
  static constexpr const char* name = "positioningObjectsLayer";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::positioningObjectsLayer;
};
struct timezoneInformation : Field<0x4080, datatypes::DT_timezoneInformation_struct> {
  static constexpr const char* name = "timezoneInformation";
  static constexpr auto skeleton_field = &skeleton::Psd2Skeleton::timezoneInformation;
};

/// The interface as a whole.
struct Interface {
  using Service = internal::Service;
  using Skeleton = skeleton::Psd2Skeleton;
  /// In the order of the skeleton and the adapter.
  using Fields =
      common::TypeList<automatedParkingLayer, dynamicContentLayer, egoPositionLayer, laneLayer, linkLayerLongRange,
                       linkLayerShortRange, positioningObjectsLayer, timezoneInformation>;
  /// In the order in which an offer looks for a missing value.
  using CheckOrder =
      common::TypeList<linkLayerLongRange, linkLayerShortRange, laneLayer, positioningObjectsLayer, egoPositionLayer,
                       dynamicContentLayer, automatedParkingLayer, timezoneInformation>;
};

}  // namespace kro::services::psd2::psd2_binding::vsomeip::descriptors
