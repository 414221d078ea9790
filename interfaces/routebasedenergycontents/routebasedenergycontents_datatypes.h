// Written by scripts/generate from interfaces/model/routebasedenergycontents.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// The records of the routebasedenergycontents fields. Every member of every record is optional; `enumerate` lists the
/// members with their data ids, in the order in which they go on the wire. The interface definition names no units. Our
/// choice: that all numbers are unsigned integers, as only their widths are defined.
namespace kro::services::routebasedenergycontents::datatypes {

using ara::core::records::operator==;
using ara::core::records::operator!=;

/// The destinations of the route.
struct DT_destinations_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint32_t> member3;
  ara::core::Optional<std::uint32_t> member4;
  ara::core::Optional<std::uint32_t> member5;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
  }
};

/// The range along the route.
struct DT_rangeOnRouteValues_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// The energy that is left at points of the route.
struct DT_routeBasedResidualEnergyValues_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// The status of the service.
struct DT_rwmStatus_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint8_t> member3;
  ara::core::Optional<std::uint8_t> member4;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

/// The state of charge to reach at each charging stop.
struct DT_targetSocChargings_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint8_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

}  // namespace kro::services::routebasedenergycontents::datatypes
