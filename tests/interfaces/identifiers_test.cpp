#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "interfaces/interface_list.h"

namespace {

using namespace ara::com::internal::vsomeip::common;

/// One line per field of an interface: name, getter, event and eventgroup, and the setter where there is one.
template <typename Interface>
std::string FieldsOf() {
  std::ostringstream out;
  out << std::hex;
  ForEachType(typename Interface::Fields{}, [&](auto field) {
    using Descriptor = decltype(field);
    out << Descriptor::name << ' ' << Descriptor::getter_method_id << ' ' << Descriptor::event_id << ' '
        << Descriptor::event_groups[0];
    if constexpr (Descriptor::is_mutable) {
      out << " set " << Descriptor::setter_method_id;
    }
    out << '\n';
  });
  return out.str();
}

TEST(Identifiers, OfEveryFieldInTheOrderOfTheClass) {
  using namespace kro::services;
  EXPECT_EQ(FieldsOf<energysystem::energysystem_binding::vsomeip::descriptors::Interface>(),
            "highVoltageBatteries 4020 c020 c020\nlowVoltageBatteries 4030 c030 c030\n"
            "lowVoltageSystemInfo 4040 c040 c040\nnotifications 4010 c010 c010\n");
  EXPECT_EQ(FieldsOf<routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors::Interface>(),
            "status 4010 c010 c010\ncustomerActionTriggers 4020 c020 c020\nsetupSpeedLimits 4030 c030 c030\n"
            "setupSpeedThresholds 4040 c040 c040\nsetupRealSpeedRatios 4050 c050 c050\n"
            "energyContents 4060 c060 c060\nconsumptionValues 4070 c070 c070\nadditionalConsumers 4080 c080 c080\n"
            "slopeConsumptionValues 4090 c090 c090\nroadConsumptionValues 40a0 c0a0 c0a0\n"
            "residualEnergies 40b0 c0b0 c0b0\n");
  EXPECT_EQ(FieldsOf<chargetimemanager::chargetimemanager_binding::vsomeip::descriptors::Interface>(),
            "chargeTimeCalculations 4010 c010 c010 set 4011\n");
  EXPECT_EQ(FieldsOf<routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors::Interface>(),
            "destinations 4040 c040 c040\nrangeOnRouteValues 4020 c020 c020\n"
            "routeBasedResidualEnergyValues 4030 c030 c030\nrwmStatus 4010 c010 c010\n"
            "targetSocChargings 4050 c050 c050\n");
  EXPECT_EQ(FieldsOf<psd2::psd2_binding::vsomeip::descriptors::Interface>(),
            "automatedParkingLayer 4070 c070 c070\ndynamicContentLayer 4060 c060 c060\n"
            "egoPositionLayer 4050 c050 c050\nlaneLayer 4030 c030 c030\nlinkLayerLongRange 4010 c010 c010\n"
            "linkLayerShortRange 4020 c020 c020\npositioningObjectsLayer 4040 c040 c040\n"
            "timezoneInformation 4080 c080 c080\n");
}

template <std::uint16_t Getter, bool Mutable = false>
struct Field {
  static constexpr std::uint16_t getter_method_id = Getter;
  static constexpr bool is_mutable = Mutable;
};

// What keeps an interface whose lists have drifted from compiling.
TEST(Identifiers, ListsThatDriftAreNoticed) {
  using ara::core::internal::kIsPermutation;
  using First = Field<0x4010>;
  using Second = Field<0x4020>;
  static_assert(kIsPermutation<TypeList<First, Second>, TypeList<Second, First>>);
  static_assert(!kIsPermutation<TypeList<First>, TypeList<First, Second>>, "one is left out");
  static_assert(!kIsPermutation<TypeList<First, Second>, TypeList<First>>, "one is too many");
  static_assert(!kIsPermutation<TypeList<First, First>, TypeList<First, Second>>, "one comes twice");
  static_assert(!kIsPermutation<TypeList<First, Second>, TypeList<First, First>>);
  static_assert(!kIsPermutation<TypeList<First, Field<0x4030>>, TypeList<First, Second>>, "one is a stranger");
  static_assert(HasDistinctIds(TypeList<First, Second, Field<0x4030, true>>{}));
  static_assert(!HasDistinctIds(TypeList<First, Second, Field<0x4010>>{}));
  static_assert(!HasDistinctIds(TypeList<Field<0x4010, true>, Field<0x4011>>{}), "a setter that is another's getter");
}

}  // namespace
