// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <vector>

#include "ara/com/internal/skeleton/skeleton_field.h"
#include "ara/com/internal/skeleton/typed_service_impl_base.h"
#include "core_types/visibility.h"
#include "interfaces/psd2/psd2_datatypes.h"

namespace kro::services::psd2::skeleton {

/// The types of the fields. That of a field's value is `fields::linkLayerLongRange::FieldType`.
namespace fields {
using automatedParkingLayer =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_automatedParkingLayer_struct>>;
using dynamicContentLayer =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_dynamicContentLayer_struct>>;
using egoPositionLayer =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_egoPositionLayer_struct>>;
using laneLayer = ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_laneLayer_struct>>;
using linkLayerLongRange =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_linkLayerLongRange_struct>>;
using linkLayerShortRange =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_linkLayerShortRange_struct>>;
using positioningObjectsLayer =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_positioningObjectsLayer_struct>>;
using timezoneInformation =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_timezoneInformation_struct>>;
}  // namespace fields

/// Offers the application's map to the vehicle, one layer a field.
///
///     Psd2Skeleton psd2({"1"});
///     psd2.linkLayerLongRange.Update(value);        // every field needs a value ...
///     psd2.linkLayerLongRange.ServeCurrentValue();  // ... and something that answers its getter
///     ...
///     psd2.OfferService();
///
/// An application that derives from this class withdraws the offer in its own destructor.
class TARN7_EXPORT Psd2Skeleton : public ara::com::internal::skeleton::TypedServiceImplBase<Psd2Skeleton> {
 public:
  /// `instances` are the instances to be offered. Throws std::invalid_argument when there is none.
  explicit Psd2Skeleton(ara::com::InstanceIdentifierContainer instances);
  /// Withdraws the offer. Afterwards no get handler runs; one that is running is waited for.
  ~Psd2Skeleton() override;

  /// Offers every instance; a service that is offered already stays so. Throws IllegalStateException when a field has
  /// no value yet or when the process offers an instance otherwise (the text names either); ComErrorDomainException
  /// (kServiceNotAvailable) when the platform cannot offer an instance; and what the stack throws. Nothing is offered
  /// then.
  void OfferService();
  /// Withdraws the offer, which can be made again, and waits for get handlers that run on other threads. Without an
  /// offer it only waits. A get handler that calls it does not wait.
  void StopOfferService();

  /// The parking garages.
  fields::automatedParkingLayer automatedParkingLayer;
  /// What changes on the road.
  fields::dynamicContentLayer dynamicContentLayer;
  /// Where the vehicle is on the map.
  fields::egoPositionLayer egoPositionLayer;
  /// The lanes.
  fields::laneLayer laneLayer;
  /// The links far ahead.
  fields::linkLayerLongRange linkLayerLongRange;
  /// The links close ahead.
  fields::linkLayerShortRange linkLayerShortRange;
  /// The landmarks.
  fields::positioningObjectsLayer positioningObjectsLayer;
  /// The time zone of the vehicle's position.
  fields::timezoneInformation timezoneInformation;
};

}  // namespace kro::services::psd2::skeleton
