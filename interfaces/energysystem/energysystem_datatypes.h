// Written by scripts/generate from interfaces/model/energysystem.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// The records of the energysystem fields. Every member of every record is optional; `enumerate` lists the members with
/// their data ids, in the order in which they go on the wire. The interface definition names no units. Our choice: that
/// integers are unsigned.
namespace kro::services::energysystem::datatypes {

using ara::core::records::operator==;
using ara::core::records::operator!=;

/// A high-voltage battery.
struct DT_highVoltageBatteries_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<float> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<bool> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// A low-voltage battery.
struct DT_lowVoltageBatteries_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

/// The state of the low-voltage system.
struct DT_lowVoltageSystemInfo_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<bool> member2;
  ara::core::Optional<std::uint32_t> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// A notification of the energy system.
struct DT_notifications_struct {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

}  // namespace kro::services::energysystem::datatypes
