#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// The records of the routebasedconsumption fields. Every member is optional; `enumerate` lists the members with their
/// data ids, in the order in which they go on the wire. Where a record mixes numbers, the physical values (speeds,
/// ratios, energies, consumptions) are floats and the identifiers and counters unsigned: which member is which is this
/// library's choice, noted at the member. The interface model names no units.
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

/// Set-up: speed limits per road kind.
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

/// Set-up: thresholds between speed ranges.
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

/// Set-up: the ratio of driven speed to the limit.
struct DT_setupRealSpeedRatios_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<std::uint32_t> member1;  ///< identifier
  ara::core::Optional<float> member2;          ///< ratio
  ara::core::Optional<float> member3;          ///< ratio
  ara::core::Optional<float> member4;          ///< ratio

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// The energy that the battery holds.
struct DT_energyContents_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<float> member1;          ///< energy
  ara::core::Optional<float> member2;          ///< energy
  ara::core::Optional<float> member3;          ///< energy

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Consumption per kind of driving.
struct DT_consumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<std::uint32_t> member1;  ///< identifier
  ara::core::Optional<float> member2;          ///< consumption
  ara::core::Optional<float> member3;          ///< consumption
  ara::core::Optional<float> member4;          ///< consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Consumers beside the drive.
struct DT_additionalConsumers_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<float> member1;          ///< consumption
  ara::core::Optional<float> member2;          ///< consumption
  ara::core::Optional<float> member3;          ///< consumption
  ara::core::Optional<float> member4;          ///< consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// Consumption per slope.
struct DT_slopeConsumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<std::uint32_t> member1;  ///< identifier
  ara::core::Optional<float> member2;          ///< consumption
  ara::core::Optional<float> member3;          ///< consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// Consumption per road kind.
struct DT_roadConsumptionValues_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<std::uint32_t> member1;  ///< identifier
  ara::core::Optional<float> member2;          ///< speed
  ara::core::Optional<float> member3;          ///< consumption
  ara::core::Optional<float> member4;          ///< consumption

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// The energy that is left along the route.
struct DT_residualEnergies_struct {
  ara::core::Optional<std::uint32_t> member0;  ///< identifier
  ara::core::Optional<std::uint32_t> member1;  ///< counter
  ara::core::Optional<float> member2;          ///< energy
  ara::core::Optional<float> member3;          ///< energy
  ara::core::Optional<float> member4;          ///< energy

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
