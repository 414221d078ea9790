// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core_types/optional.h"
#include "core_types/record_equality.h"

/// Shapes that recur throughout the psd2 records. Every member of every record is optional; `enumerate` lists the
/// members with their data ids, in the order in which they go on the wire. The interface definition names no units. Our
/// choice: that all numbers are unsigned (a negative number is its two's complement, a float its bits), as only their
/// widths are defined; and the names of nested records, and of others that do not begin with DT_.
namespace kro::services::psd2::datatypes {

using ara::core::records::operator==;
using ara::core::records::operator!=;

/// A record around one value: the extra nesting is part of the wire form.
template <typename T>
struct Box {
  ara::core::Optional<T> member0;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
  }
};

/// A record around a sequence.
template <typename T>
using SequenceBox = Box<std::vector<T>>;

/// Three 32-bit values.
struct Triple {
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

/// The sixteen bytes that each layer starts with, copied as they are.
using LayerBytes = std::array<std::uint8_t, 16>;

}  // namespace kro::services::psd2::datatypes
