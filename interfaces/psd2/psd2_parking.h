// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_references.h"
#include "interfaces/psd2/psd2_shapes.h"

/// The parking garages and their sections.
namespace kro::services::psd2::datatypes {

/// An area to park in. Our choice: its members.
struct DT_parkingArea {
  ara::core::Optional<DT_reference> member0;
  ara::core::Optional<DT_polyline> member1;
  ara::core::Optional<std::uint8_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

/// A row of places. Our choice: its members.
struct DT_parkingRow {
  ara::core::Optional<DT_relativeCoordinate> member0;
  ara::core::Optional<DT_relativeCoordinate> member1;
  ara::core::Optional<std::uint16_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

/// Rows of places. Our choice: its member.
struct DT_parkingRowList {
  ara::core::Optional<std::vector<DT_parkingRow>> member0;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
  }
};

/// A section of a garage. Taken for: a level, or another part. Our choice: the order of its members.
struct DT_parkingGarageSection {
  ara::core::Optional<DT_reference> member0;
  ara::core::Optional<std::string> member1;
  ara::core::Optional<DT_polyline> member2;
  ara::core::Optional<DT_referenceList> member3;
  ara::core::Optional<DT_parkingRowList> member4;
  ara::core::Optional<SequenceBox<DT_relativeCoordinate>> member5;
  ara::core::Optional<std::string> member6;

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

/// A parking garage.
struct DT_parkingGarage {
  /// Taken for: the areas of the garage and its number of places. Our choice: its members.
  struct Areas {
    ara::core::Optional<SequenceBox<DT_parkingArea>> member0;
    ara::core::Optional<std::uint16_t> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  ara::core::Optional<SequenceBox<DT_parkingGarageSection>> member0;
  ara::core::Optional<Areas> member1;
  ara::core::Optional<SequenceBox<Triple>> member2;
  ara::core::Optional<Box<std::uint32_t>> member3;
  ara::core::Optional<DT_reference> member4;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
  }
};

}  // namespace kro::services::psd2::datatypes
