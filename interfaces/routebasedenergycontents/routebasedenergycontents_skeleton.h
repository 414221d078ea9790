// Written by scripts/generate from interfaces/model/routebasedenergycontents.json.
#pragma once

#include <vector>

#include "ara/com/internal/skeleton/skeleton_field.h"
#include "ara/com/internal/skeleton/typed_service_impl_base.h"
#include "core_types/visibility.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_datatypes.h"

namespace kro::services::routebasedenergycontents::skeleton {

/// The types of the fields. That of a field's value is `fields::rwmStatus::FieldType`.
namespace fields {
using destinations = ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_destinations_struct>>;
using rangeOnRouteValues =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_rangeOnRouteValues_struct>>;
using routeBasedResidualEnergyValues =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_routeBasedResidualEnergyValues_struct>>;
using rwmStatus = ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_rwmStatus_struct>>;
using targetSocChargings =
    ara::com::internal::skeleton::SkeletonField<std::vector<datatypes::DT_targetSocChargings_struct>>;
}  // namespace fields

/// Offers the application's route-based energy values to the vehicle.
///
///     RouteBasedEnergyContentsSkeleton routeBasedEnergyContents({"1"});
///     routeBasedEnergyContents.rwmStatus.Update(value);        // every field needs a value ...
///     routeBasedEnergyContents.rwmStatus.ServeCurrentValue();  // ... and something that answers its getter
///     ...
///     routeBasedEnergyContents.OfferService();
///
/// An application that derives from this class withdraws the offer in its own destructor.
class TARN7_EXPORT RouteBasedEnergyContentsSkeleton
    : public ara::com::internal::skeleton::TypedServiceImplBase<RouteBasedEnergyContentsSkeleton> {
 public:
  /// `instances` are the instances to be offered. Throws std::invalid_argument when there is none.
  explicit RouteBasedEnergyContentsSkeleton(ara::com::InstanceIdentifierContainer instances);
  /// Withdraws the offer. Afterwards no get handler runs; one that is running is waited for.
  ~RouteBasedEnergyContentsSkeleton() override;

  /// Offers every instance; a service that is offered already stays so. Throws IllegalStateException when a field has
  /// no value yet or when the process offers an instance otherwise (the text names either); ComErrorDomainException
  /// (kServiceNotAvailable) when the platform cannot offer an instance; and what the stack throws. Nothing is offered
  /// then.
  void OfferService();
  /// Withdraws the offer, which can be made again, and waits for get handlers that run on other threads. Without an
  /// offer it only waits. A get handler that calls it does not wait.
  void StopOfferService();

  /// The destinations of the route.
  fields::destinations destinations;
  /// The range along the route.
  fields::rangeOnRouteValues rangeOnRouteValues;
  /// The energy that is left at points of the route.
  fields::routeBasedResidualEnergyValues routeBasedResidualEnergyValues;
  /// The status of the service.
  fields::rwmStatus rwmStatus;
  /// The state of charge to reach at each charging stop.
  fields::targetSocChargings targetSocChargings;
};

}  // namespace kro::services::routebasedenergycontents::skeleton
