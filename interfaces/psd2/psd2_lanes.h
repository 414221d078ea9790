// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>
#include <vector>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_attributes.h"
#include "interfaces/psd2/psd2_references.h"
#include "interfaces/psd2/psd2_shapes.h"

/// The lanes of the roads, in groups, and their boundaries.
namespace kro::services::psd2::datatypes {

/// A lane. Data id 4 is not used.
struct DT_lane {
  ara::core::Optional<SequenceBox<DT_reference>> member0;
  ara::core::Optional<SequenceBox<DT_reference>> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<SequenceBox<Triple>> member3;
  ara::core::Optional<Box<std::uint32_t>> member5;
  ara::core::Optional<Box<std::uint32_t>> member6;
  ara::core::Optional<DT_reference> member7;
  ara::core::Optional<DT_reference> member8;
  ara::core::Optional<std::uint8_t> member9;
  ara::core::Optional<SequenceBox<DT_attribute>> member10;  ///< our choice: its contents
  ara::core::Optional<std::uint32_t> member11;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(5, "member5", record.member5);
    enumerator(6, "member6", record.member6);
    enumerator(7, "member7", record.member7);
    enumerator(8, "member8", record.member8);
    enumerator(9, "member9", record.member9);
    enumerator(10, "member10", record.member10);
    enumerator(11, "member11", record.member11);
  }
};

/// The boundary of a lane. Taken for: a line, a kerb, a wall.
struct DT_laneBoundary {
  /// Two values. Taken for: an extent.
  struct Extent {
    ara::core::Optional<std::uint32_t> member0;
    ara::core::Optional<std::uint32_t> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  ara::core::Optional<Box<std::uint32_t>> member0;
  ara::core::Optional<std::uint8_t> member1;
  ara::core::Optional<std::uint8_t> member2;
  ara::core::Optional<Extent> member3;
  ara::core::Optional<SequenceBox<Triple>> member4;
  ara::core::Optional<Box<std::uint32_t>> member5;
  ara::core::Optional<std::uint8_t> member6;

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

/// Boundaries that belong together. Our choice: its members.
struct DT_laneBoundaryGroup {
  ara::core::Optional<std::uint8_t> member0;
  ara::core::Optional<SequenceBox<DT_laneBoundary>> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// Boundaries beside each other. Our choice: its members.
struct DT_laneBoundaryParallelElement {
  ara::core::Optional<std::uint32_t> member0;
  ara::core::Optional<DT_laneBoundaryGroup> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// Lanes that belong together. Taken for: the lanes of a part of the road.
struct DT_laneGroup {
  /// Taken for: boundaries along the group. Our choice: that there is a member 0, and its width.
  struct Boundaries {
    ara::core::Optional<std::uint8_t> member0;
    ara::core::Optional<std::vector<DT_laneBoundaryParallelElement>> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  /// References under a number. Taken for: a connection.
  struct Connection {
    ara::core::Optional<Box<std::uint32_t>> member0;
    ara::core::Optional<SequenceBox<DT_reference>> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  ara::core::Optional<DT_reference> member0;
  ara::core::Optional<SequenceBox<DT_rangedReference>> member1;
  ara::core::Optional<SequenceBox<DT_lane>> member2;
  ara::core::Optional<SequenceBox<Boundaries>> member3;
  ara::core::Optional<SequenceBox<Connection>> member4;
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

}  // namespace kro::services::psd2::datatypes
