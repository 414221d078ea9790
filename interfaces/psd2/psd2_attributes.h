// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_references.h"
#include "interfaces/psd2/psd2_shapes.h"

/// Attributes of the map's objects, and the speed limits that hold where nothing else is said.
namespace kro::services::psd2::datatypes {

/// An attribute. Taken for: a kind and a value. Our choice: its members.
struct DT_attribute {
  ara::core::Optional<std::uint16_t> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// An attribute at a point. Taken for: an offset and an attribute. Our choice: its members.
struct DT_attributePoint {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<DT_attribute> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// An attribute of a part of an object. Our choice: its members.
struct DT_referencedAttribute {
  ara::core::Optional<DT_rangedReference> member0;
  ara::core::Optional<DT_attribute> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// A constraint. Taken for: a condition under which something holds.
struct DT_constraint {
  /// Four small values. Taken for: flags.
  struct Flags {
    ara::core::Optional<std::uint8_t> member0;
    ara::core::Optional<std::uint8_t> member1;
    ara::core::Optional<std::uint8_t> member2;
    ara::core::Optional<std::uint8_t> member3;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
      enumerator(3, "member3", record.member3);
    }
  };

  ara::core::Optional<SequenceBox<std::uint32_t>> member0;  ///< our choice: the width of the elements
  ara::core::Optional<Flags> member1;
  ara::core::Optional<Box<std::uint32_t>> member2;
  ara::core::Optional<Box<std::uint32_t>> member3;
  ara::core::Optional<Box<std::uint32_t>> member4;
  ara::core::Optional<Box<std::uint32_t>> member5;
  ara::core::Optional<Box<std::uint32_t>> member6;

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

/// A speed limit and its conditions. Data id 2 is not used.
struct DT_generalSpeedLimit {
  ara::core::Optional<Box<std::uint32_t>> member0;
  ara::core::Optional<std::uint8_t> member1;
  ara::core::Optional<SequenceBox<DT_constraint>> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(3, "member3", record.member3);
  }
};

}  // namespace kro::services::psd2::datatypes
