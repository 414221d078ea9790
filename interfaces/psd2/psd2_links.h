// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_attributes.h"
#include "interfaces/psd2/psd2_references.h"
#include "interfaces/psd2/psd2_shapes.h"

/// The links: the roads of the map between its junctions.
namespace kro::services::psd2::datatypes {

/// A link and what is known of it.
struct DT_link {
  /// Data id 5 is not used. Taken for: a part of the link.
  struct Segment {
    ara::core::Optional<std::uint32_t> member0;
    ara::core::Optional<std::uint32_t> member1;
    ara::core::Optional<std::uint32_t> member2;
    ara::core::Optional<std::uint32_t> member3;
    ara::core::Optional<Box<std::uint32_t>> member4;  ///< our choice: that this record has one member only
    ara::core::Optional<std::uint8_t> member6;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
      enumerator(3, "member3", record.member3);
      enumerator(4, "member4", record.member4);
      enumerator(6, "member6", record.member6);
    }
  };

  /// Taken for: attributes along the link.
  struct Profile {
    ara::core::Optional<std::uint32_t> member0;
    ara::core::Optional<std::uint16_t> member1;
    ara::core::Optional<Box<std::uint32_t>> member2;  ///< our choice: that this record has one member only
    ara::core::Optional<SequenceBox<DT_attributePoint>> member3;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
      enumerator(3, "member3", record.member3);
    }
  };

  ara::core::Optional<std::uint8_t> member0;
  ara::core::Optional<SequenceBox<DT_reference>> member1;
  ara::core::Optional<SequenceBox<DT_reference>> member2;
  ara::core::Optional<Box<std::uint32_t>> member3;
  ara::core::Optional<DT_reference> member4;
  ara::core::Optional<std::uint8_t> member5;
  ara::core::Optional<Box<std::uint32_t>> member6;
  ara::core::Optional<Box<std::uint32_t>> member7;
  ara::core::Optional<SequenceBox<Segment>> member8;
  ara::core::Optional<SequenceBox<DT_attribute>> member9;  ///< our choice: its contents
  ara::core::Optional<std::uint8_t> member10;
  ara::core::Optional<std::uint8_t> member11;
  ara::core::Optional<Box<std::uint32_t>> member12;
  ara::core::Optional<std::uint8_t> member13;
  ara::core::Optional<std::uint8_t> member14;
  ara::core::Optional<SequenceBox<Profile>> member15;
  ara::core::Optional<std::uint8_t> member16;
  ara::core::Optional<Box<std::uint32_t>> member17;
  ara::core::Optional<std::uint32_t> member18;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
    enumerator(6, "member6", record.member6);
    enumerator(7, "member7", record.member7);
    enumerator(8, "member8", record.member8);
    enumerator(9, "member9", record.member9);
    enumerator(10, "member10", record.member10);
    enumerator(11, "member11", record.member11);
    enumerator(12, "member12", record.member12);
    enumerator(13, "member13", record.member13);
    enumerator(14, "member14", record.member14);
    enumerator(15, "member15", record.member15);
    enumerator(16, "member16", record.member16);
    enumerator(17, "member17", record.member17);
    enumerator(18, "member18", record.member18);
  }
};

}  // namespace kro::services::psd2::datatypes
