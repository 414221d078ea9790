#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "core_types/optional.h"

/// Comparison of records: types that list their members through `enumerate`. A namespace of records takes the two
/// operators over with using-declarations.
namespace ara::core::records {

namespace detail {

struct AnyMember {
  template <typename Member>
  void operator()(std::uint16_t dataId, const char* name, const Member& member) const;
};

template <typename Record>
using EnableRecord = decltype(Record::enumerate(std::declval<const Record&>(), std::declval<AnyMember>()));

/// Compares one member with the one of another record that has the same data id.
template <typename Record>
struct MemberComparison {
  const Record& other;
  bool are_equal = true;

  template <typename Member>
  void operator()(std::uint16_t dataId, const char*, const Member& member) {
    const auto compare = [&](std::uint16_t otherId, const char*, const auto& otherMember) {
      if constexpr (std::is_same_v<decltype(otherMember), const Member&>) {
        are_equal = are_equal && (otherId != dataId || internal::AreEqual(member, otherMember));
      }
    };
    Record::enumerate(other, compare);
  }
};

}  // namespace detail

/// Whether all members are equal; members that are absent equal each other.
template <typename Record, typename = detail::EnableRecord<Record>>
bool operator==(const Record& left, const Record& right) {
  detail::MemberComparison<Record> comparison{right};
  Record::enumerate(left, comparison);
  return comparison.are_equal;
}
template <typename Record, typename = detail::EnableRecord<Record>>
bool operator!=(const Record& left, const Record& right) {
  return !(left == right);
}

}  // namespace ara::core::records
