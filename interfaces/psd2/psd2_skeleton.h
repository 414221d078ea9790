#pragma once

#include <vector>

#include "ara/com/internal/skeleton/skeleton_field.h"
#include "ara/com/internal/skeleton/typed_service_impl_base.h"
#include "core_types/visibility.h"
#include "interfaces/psd2/psd2_datatypes.h"

namespace kro::services::psd2::skeleton {

/// Offers the application's map to the vehicle, one layer a field.
///
///     Psd2Skeleton map({"1"});
///     map.linkLayerLongRange.Update(links);        // every field needs a value ...
///     map.linkLayerLongRange.ServeCurrentValue();  // ... and something that answers its getter
///     ...
///     map.OfferService();
///
/// An application that derives from this class withdraws the offer in its own destructor.
class TARN7_EXPORT Psd2Skeleton : public ara::com::internal::skeleton::TypedServiceImplBase<Psd2Skeleton> {
 public:
  template <typename Record>
  using Field = ara::com::internal::skeleton::SkeletonField<std::vector<Record>>;

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
  Field<datatypes::DT_automatedParkingLayer_struct> automatedParkingLayer;
  /// What changes on the road: closures, weather, traffic.
  Field<datatypes::DT_dynamicContentLayer_struct> dynamicContentLayer;
  /// Where the vehicle is on the map.
  Field<datatypes::DT_egoPositionLayer_struct> egoPositionLayer;
  /// The lanes.
  Field<datatypes::DT_laneLayer_struct> laneLayer;
  /// The links far ahead.
  Field<datatypes::DT_linkLayerLongRange_struct> linkLayerLongRange;
  /// The links close ahead.
  Field<datatypes::DT_linkLayerShortRange_struct> linkLayerShortRange;
  /// The landmarks.
  Field<datatypes::DT_positioningObjectsLayer_struct> positioningObjectsLayer;
  /// The time zone of the vehicle's position.
  Field<datatypes::DT_timezoneInformation_struct> timezoneInformation;
};

}  // namespace kro::services::psd2::skeleton
