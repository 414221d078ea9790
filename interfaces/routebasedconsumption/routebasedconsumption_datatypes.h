// Written by scripts/generate from interfaces/model/routebasedconsumption.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// The records of the routebasedconsumption fields. Every member of every record is optional; `enumerate` lists the
/// members with their data ids, in the order in which they go on the wire. The interface definition names no units. Our
/// choice: that integers are unsigned, and which members are floats where a record mixes numbers: those taken for
/// physical values (speeds, ratios, energies, consumptions).
namespace kro::services::routebasedconsumption::datatypes {

using ara::core::records::operator==;
using ara::core::records::operator!=;

/// The state of the consumption service.
struct DT_status_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<bool> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// Actions that the customer is asked for.
struct DT_customerActionTriggers_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// Set-up: speed limits. Taken for: one limit per road kind.
struct DT_setupSpeedLimits_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint32_t> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Set-up: speed thresholds. Taken for: the limits between speed ranges.
struct DT_setupSpeedThresholds_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint32_t> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Set-up: real-speed ratios. Taken for: the driven speed over the limit. Our choice: which members are floats.
struct DT_setupRealSpeedRatios_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: identifier
  ara::core::Optional<float> member2;          ///< taken for: ratio
  ara::core::Optional<float> member3;          ///< taken for: ratio
  ara::core::Optional<float> member4;          ///< taken for: ratio

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Energy contents. Taken for: the energy that the battery holds. Our choice: which members are floats.
struct DT_energyContents_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: identifier
  ara::core::Optional<float> member2;          ///< taken for: energy
  ara::core::Optional<float> member3;          ///< taken for: energy

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Consumption values. Taken for: consumption per kind of driving. Our choice: which members are floats.
struct DT_consumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: identifier
  ara::core::Optional<float> member2;          ///< taken for: consumption
  ara::core::Optional<float> member3;          ///< taken for: consumption
  ara::core::Optional<float> member4;          ///< taken for: consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Consumers beside the drive. Our choice: that member 0 is no float.
struct DT_additionalConsumers_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<float> member1;          ///< taken for: consumption
  ara::core::Optional<float> member2;          ///< taken for: consumption
  ara::core::Optional<float> member3;          ///< taken for: consumption
  ara::core::Optional<float> member4;          ///< taken for: consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Consumption per slope. Our choice: which members are floats.
struct DT_slopeConsumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: identifier
  ara::core::Optional<float> member2;          ///< taken for: consumption
  ara::core::Optional<float> member3;          ///< taken for: consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Consumption per road. Taken for: consumption per road kind. Our choice: which members are floats.
struct DT_roadConsumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: identifier
  ara::core::Optional<float> member2;          ///< taken for: speed
  ara::core::Optional<float> member3;          ///< taken for: consumption
  ara::core::Optional<float> member4;          ///< taken for: consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Residual energies. Taken for: the energy that is left along the route. Our choice: which members are floats.
struct DT_residualEnergies_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< taken for: identifier
  ara::core::Optional<std::uint32_t> member1;  ///< taken for: counter
  ara::core::Optional<float> member2;          ///< taken for: energy
  ara::core::Optional<float> member3;          ///< taken for: energy
  ara::core::Optional<float> member4;          ///< taken for: energy

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

}  // namespace kro::services::routebasedconsumption::datatypes
