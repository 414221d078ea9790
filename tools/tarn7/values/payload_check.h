#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "core_types/optional.h"
#include "serialization/deserializer.h"
#include "tools/tarn7/values/place.h"

namespace tarn7::tool {

/// Bytes that are no value of their field. The text is the library's own, behind the place in the value and in the
/// payload: "[0].member3 at byte 17: ...".
class PayloadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a payload holds that the library accepts and passes over: one line each.
using PayloadNotes = std::vector<std::string>;

/// Checks a payload as a value of type Value, part by part, each with the library's own decoder: the first part that
/// this refuses is where the payload is wrong. Throws PayloadError. A payload that passes can be decoded; in
/// particular it holds none of the short scalars that may end the process.
template <typename Value>
PayloadNotes CheckPayload(const unsigned char* data, std::uint64_t size);

namespace detail {

namespace common = ara::com::internal::vsomeip::common;

/// Bytes of a payload, and where in it they begin.
struct Extent {
  const unsigned char* data;
  std::uint64_t size;
  std::uint64_t offset;

  Extent First(std::uint64_t count) const noexcept { return {data, count, offset}; }
  Extent From(std::uint64_t skipped) const noexcept { return {data + skipped, size - skipped, offset + skipped}; }
  /// How many bytes belong to the value that begins here with its length; 0 where that reaches beyond the extent.
  std::uint64_t SizeWithLength() const;
};

/// Has the library decode a value from the extent.
using DecodeFunction = void (*)(const Extent& extent);
/// Checks the value that the extent holds.
using CheckFunction = void (*)(const Place& place, const Extent& extent, PayloadNotes& notes);

struct CheckedMember {
  std::uint16_t data_id;
  const char* name;
  CheckFunction check;
};

// What does not depend on types. The extent is that of the whole value, its length included.

/// Throws PayloadError where the library fails.
void DecodeAt(const Place& place, const Extent& extent, DecodeFunction decode);
void CheckMembers(const Place& place, const Extent& extent, const std::vector<CheckedMember>& members,
                  PayloadNotes& notes);
void CheckElements(const Place& place, const Extent& extent, CheckFunction element, DecodeFunction sequence,
                   PayloadNotes& notes);
void NoteUnread(const Place& place, const Extent& extent, std::uint64_t read, PayloadNotes& notes);

template <typename T>
void CheckValue(const Place& place, const Extent& extent, PayloadNotes& notes);

template <typename T>
void DecodeValue(const Extent& extent) {
  if constexpr (common::kIsScalar<T>) {
    ara::core::Optional<T> value;
    common::DeserializingEnumerator(extent.data, extent.size)(value);
  } else {
    common::Deserializer<T>(extent.data, extent.size).getValue();
  }
}

struct MemberCollector {
  std::vector<CheckedMember>& members;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>&) const {
    members.push_back({dataId, name, &CheckValue<T>});
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const T&) const {
    members.push_back({dataId, name, &CheckValue<T>});
  }
};

template <typename Record>
const std::vector<CheckedMember>& MembersOf() {
  static const std::vector<CheckedMember> members = [] {
    std::vector<CheckedMember> collected;
    const Record record{};
    Record::enumerate(record, MemberCollector{collected});
    return collected;
  }();
  return members;
}

template <typename T>
void CheckValue(const Place& place, const Extent& extent, PayloadNotes& notes) {
  if constexpr (common::kIsRecord<T>) {
    CheckMembers(place, extent, MembersOf<T>(), notes);
  } else if constexpr (common::kIsSequence<T>) {
    if constexpr (!common::kIsScalar<typename T::value_type>) {
      CheckElements(place, extent, &CheckValue<typename T::value_type>, &DecodeValue<T>, notes);
    }
  }
  DecodeAt(place, extent, &DecodeValue<T>);  // no part of it is wrong: what is wrong now is its own
  if constexpr (common::kIsScalar<T>) {
    NoteUnread(place, extent, sizeof(T), notes);
  }
}

}  // namespace detail

template <typename Value>
PayloadNotes CheckPayload(const unsigned char* data, std::uint64_t size) {
  const detail::Extent payload{data, size, 0};
  const Place whole;
  PayloadNotes notes;
  if (payload.SizeWithLength() != 0) {
    detail::CheckValue<Value>(whole, payload, notes);
  }
  detail::DecodeAt(whole, payload, [](const detail::Extent& extent) {
    detail::common::DeserializeFieldValue<Value>(extent.data, extent.size);
  });
  detail::NoteUnread(whole, payload, payload.SizeWithLength(), notes);
  return notes;
}

}  // namespace tarn7::tool
