// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_shapes.h"

/// The landmarks by which a vehicle can tell where it is.
namespace kro::services::psd2::datatypes {

/// A detail of a landmark. Our choice: its members.
struct DT_landmarkObjectDetails {
  ara::core::Optional<std::uint8_t> member0;
  ara::core::Optional<Triple> member1;
  ara::core::Optional<std::uint32_t> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

/// A landmark and its details. Taken for: the triple is its position.
struct DT_landmark {
  ara::core::Optional<std::uint8_t> member0;
  ara::core::Optional<SequenceBox<DT_landmarkObjectDetails>> member1;
  ara::core::Optional<Triple> member2;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
  }
};

}  // namespace kro::services::psd2::datatypes
