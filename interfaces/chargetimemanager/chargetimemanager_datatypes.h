// Written by scripts/generate from interfaces/model/chargetimemanager.json.
#pragma once

#include <cstdint>
#include <vector>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// The record of the chargetimemanager field. Every member of every record is optional; `enumerate` lists the members
/// with their data ids, in the order in which they go on the wire. The interface definition names no units. Our choice:
/// that integers are unsigned.
namespace kro::services::chargetimemanager::datatypes {

using ara::core::records::operator==;
using ara::core::records::operator!=;

/// Requests for and results of charge-time calculations. Can be written.
struct DT_chargeTimeCalculations_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint16_t> member2;
  ara::core::Optional<std::vector<std::uint8_t>> member3;
  ara::core::Optional<std::uint16_t> member4;
  ara::core::Optional<std::vector<std::uint16_t>> member5;
  ara::core::Optional<bool> member6;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
    enumerator(6, "member6", record.member6);
  }
};

}  // namespace kro::services::chargetimemanager::datatypes
