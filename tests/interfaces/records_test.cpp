#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interfaces/chargetimemanager/chargetimemanager_datatypes.h"
#include "interfaces/energysystem/energysystem_datatypes.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_datatypes.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_datatypes.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tests/support/hex.h"

namespace {

using namespace ara::com::internal::vsomeip::common;
using support::Bytes;

/// Writes the present members as text: "0=1 1=2.5 2=true 3=[7,8]".
struct Printer {
  std::ostringstream out;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) {
    EXPECT_EQ(name, "member" + std::to_string(dataId));
    if (member) {
      out << (out.tellp() == 0 ? "" : " ") << dataId << '=';
      Print(*member);
    }
  }
  void Print(bool value) { out << (value ? "true" : "false"); }
  void Print(std::uint8_t value) { out << unsigned{value}; }
  template <typename T>
  void Print(const T& value) {
    if constexpr (kIsSequence<T>) {
      const char* separator = "[";
      for (const auto& element : value) {
        out << separator;
        Print(element);
        separator = ",";
      }
      out << ']';
    } else {
      out << value;
    }
  }
};

/// Checks one record, given with its own length field: what it decodes to, and that this encodes to the same bytes.
template <typename Record>
void ExpectRecord(const std::string& hex, const std::string& members) {
  auto bytes = Bytes(hex);
  const auto size = static_cast<unsigned char>(bytes.size());
  bytes.insert(bytes.begin(), {0, 0, 0, size});
  const auto value = DeserializeFieldValue<std::vector<Record>>(bytes.data(), bytes.size());
  ASSERT_EQ(value.size(), 1U) << hex;
  Printer printer;
  Record::enumerate(value[0], printer);
  EXPECT_EQ(printer.out.str(), members) << hex;
  auto other = value;
  EXPECT_TRUE(other == value && !(other != value)) << hex;
  other[0] = Record();
  EXPECT_EQ(other != value, !members.empty()) << hex;
  ByteVector encoded;
  SequenceContainerSerializer<std::vector<Record>>(value).pushbackTo(encoded);
  EXPECT_EQ(encoded, bytes) << hex;
}

TEST(Records, OfEnergysystem) {
  using namespace kro::services::energysystem::datatypes;
  ExpectRecord<DT_highVoltageBatteries_struct>("00000015 2000 00000001 2001 40200000 2002 00000003 0003 01",
                                               "0=1 1=2.5 2=3 3=true");
  ExpectRecord<DT_lowVoltageBatteries_struct>("00000012 2000 00000001 2001 00000002 2002 00000003", "0=1 1=2 2=3");
  ExpectRecord<DT_lowVoltageSystemInfo_struct>("00000015 2000 00000001 2001 00000002 0002 01 2003 00000004",
                                               "0=1 1=2 2=true 3=4");
  ExpectRecord<DT_notifications_struct>("0000000c 2000 00000001 2001 00000002", "0=1 1=2");
}

TEST(Records, OfRoutebasedconsumption) {
  using namespace kro::services::routebasedconsumption::datatypes;
  ExpectRecord<DT_status_struct>("00000009 2000 00000001 0001 01", "0=1 1=true");
  ExpectRecord<DT_status_struct>("00000003 0001 01", "1=true");
  ExpectRecord<DT_customerActionTriggers_struct>("0000000c 2000 00000001 2001 00000002", "0=1 1=2");
  constexpr const char* kFourNumbers = "00000018 2000 00000001 2001 00000002 2002 00000003 2003 ffffffff";
  ExpectRecord<DT_setupSpeedLimits_struct>(kFourNumbers, "0=1 1=2 2=3 3=4294967295");
  ExpectRecord<DT_setupSpeedThresholds_struct>(kFourNumbers, "0=1 1=2 2=3 3=4294967295");
  constexpr const char* kTwoNumbers = "0000001e 2000 00000001 2001 00000002 2002 3fc00000 2003 c0000000 2004 40200000";
  ExpectRecord<DT_setupRealSpeedRatios_struct>(kTwoNumbers, "0=1 1=2 2=1.5 3=-2 4=2.5");
  ExpectRecord<DT_consumptionValues_struct>(kTwoNumbers, "0=1 1=2 2=1.5 3=-2 4=2.5");
  ExpectRecord<DT_roadConsumptionValues_struct>(kTwoNumbers, "0=1 1=2 2=1.5 3=-2 4=2.5");
  ExpectRecord<DT_residualEnergies_struct>(kTwoNumbers, "0=1 1=2 2=1.5 3=-2 4=2.5");
  ExpectRecord<DT_additionalConsumers_struct>(
      "0000001e 2000 00000001 2001 3f800000 2002 3fc00000 2003 c0000000 2004 40200000", "0=1 1=1 2=1.5 3=-2 4=2.5");
  constexpr const char* kTwoFloats = "00000018 2000 00000001 2001 00000002 2002 3fc00000 2003 c0000000";
  ExpectRecord<DT_slopeConsumptionValues_struct>(kTwoFloats, "0=1 1=2 2=1.5 3=-2");
  ExpectRecord<DT_energyContents_struct>(kTwoFloats, "0=1 1=2 2=1.5 3=-2");
}

TEST(Records, OfChargetimemanager) {
  using namespace kro::services::chargetimemanager::datatypes;
  using Record = DT_chargeTimeCalculations_struct;
  ExpectRecord<Record>(
      "00000029 2000 00000001 2001 00000002 1002 0003 4003 00000002 0102 1004 0005 4005 00000004 1234 0006 0006 01",
      "0=1 1=2 2=3 3=[1,2] 4=5 5=[4660,6] 6=true");
  ExpectRecord<Record>("00000003 0006 01", "6=true");
  ExpectRecord<Record>("00000008 4003 00000002 0102", "3=[1,2]");
  ExpectRecord<Record>("00000008 4005 00000002 1234", "5=[4660]");
  // Three bytes are no sequence of 16-bit numbers, and nothing is read beyond them.
  const auto odd = Bytes("0000000d 00000009 4005 00000003 123400");
  try {
    DeserializeFieldValue<std::vector<Record>>(odd.data(), odd.size());
    ADD_FAILURE() << "an odd number of bytes was taken";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Deserialization of sequence container failed, insufficient data.");
  }
}

TEST(Records, OfRoutebasedenergycontents) {
  using namespace kro::services::routebasedenergycontents::datatypes;
  ExpectRecord<DT_destinations_struct>(
      "00000024 2000 00000001 2001 00000002 2002 00000003 2003 00000004 2004 00000005 2005 00000006",
      "0=1 1=2 2=3 3=4 4=5 5=6");
  ExpectRecord<DT_rangeOnRouteValues_struct>("0000000c 2000 00000001 2001 00000002", "0=1 1=2");
  ExpectRecord<DT_routeBasedResidualEnergyValues_struct>("0000000c 2000 00000001 2001 00000002", "0=1 1=2");
  ExpectRecord<DT_rwmStatus_struct>("00000018 2000 00000001 2001 00000002 2002 00000003 0003 04 0004 05",
                                    "0=1 1=2 2=3 3=4 4=5");
  ExpectRecord<DT_targetSocChargings_struct>("00000009 2000 00000001 0001 02", "0=1 1=2");
  ExpectRecord<DT_targetSocChargings_struct>("00000000", "");
}

}  // namespace
