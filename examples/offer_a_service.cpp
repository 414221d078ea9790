// Offers a service until Ctrl-C, and changes one of its fields once a second: offer_a_service [INSTANCE]
//
// Look at it from another shell: tarn7 watch routebasedenergycontents

#include <chrono>
#include <iostream>

#include "examples/ctrl_c.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

using namespace kro::services::routebasedenergycontents::datatypes;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;

namespace {

// Before a service can be offered, each of its fields needs a value, and something that answers its getter.
template <typename Field, typename Record>
void Begin(Field& field, const Record& record) {
  field.Update({record});
  field.ServeCurrentValue();  // RegisterGetHandler is there for an answer of another kind
}

}  // namespace

int main(int argc, char** argv) {
  const example::CtrlC ctrlC;

  RouteBasedEnergyContentsSkeleton route({argc > 1 ? argv[1] : "1"});
  std::uint32_t range = 300;
  Begin(route.rangeOnRouteValues, DT_rangeOnRouteValues_struct{1, range});
  Begin(route.routeBasedResidualEnergyValues, DT_routeBasedResidualEnergyValues_struct{1, 80});
  Begin(route.destinations, DT_destinations_struct{1, 120, {}, {}, {}, {}});  // {}: not sent
  Begin(route.rwmStatus, DT_rwmStatus_struct{1, 0, 0, {}, {}});
  Begin(route.targetSocChargings, DT_targetSocChargings_struct{1, 80});
  route.OfferService();
  std::cout << "offered" << std::endl;

  while (!ctrlC.PressedWithin(std::chrono::seconds(1)) && range > 0) {
    --range;
    route.rangeOnRouteValues.Update({DT_rangeOnRouteValues_struct{1, range}});  // reaches every subscriber
  }
  // The skeleton's destructor withdraws the offer.
}
