// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>
#include <vector>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_shapes.h"

/// References to other objects of the map, positions and curves.
namespace kro::services::psd2::datatypes {

/// A reference to an object of the map. Data id 1 comes first on the wire.
struct DT_reference {
  ara::core::Optional<std::uint64_t> member1;
  ara::core::Optional<std::uint8_t> member0;
  ara::core::Optional<std::uint8_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(1, "member1", record.member1);
    enumerator(0, "member0", record.member0);
    enumerator(2, "member2", record.member2);
  }
};

/// References to several objects. Our choice: its member.
struct DT_referenceList {
  ara::core::Optional<std::vector<DT_reference>> member0;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
  }
};

/// A reference to a part of an object. Taken for: a reference and two offsets.
struct DT_rangedReference {
  ara::core::Optional<DT_reference> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

/// A position on the globe.
struct DT_wgs84Coordinate {
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

/// A pose. Taken for: a position and a heading.
struct DT_pose {
  ara::core::Optional<DT_wgs84Coordinate> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// A position along an object.
struct DT_relativeCoordinate {
  ara::core::Optional<DT_reference> member0;
  ara::core::Optional<std::uint32_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// A curve whose curvature changes with its length.
struct DT_clothoid {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<std::uint32_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint32_t> member3;
  ara::core::Optional<Triple> member4;
  ara::core::Optional<std::uint8_t> member5;

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

/// A line. Taken for: a line through points or along curves. Our choice: its members.
struct DT_polyline {
  ara::core::Optional<SequenceBox<DT_wgs84Coordinate>> member0;
  ara::core::Optional<SequenceBox<DT_clothoid>> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// A way along objects of the map.
struct DT_path {
  /// Taken for: one object on the way. Our choice: the order of its members.
  struct Element {
    ara::core::Optional<std::uint8_t> member0;
    ara::core::Optional<DT_reference> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  ara::core::Optional<Box<std::uint32_t>> member0;
  ara::core::Optional<SequenceBox<Element>> member1;
  ara::core::Optional<std::uint8_t> member2;
  ara::core::Optional<std::uint32_t> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

}  // namespace kro::services::psd2::datatypes
