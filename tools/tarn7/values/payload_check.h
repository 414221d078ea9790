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

std::string At(const Place& place, const Extent& extent);

/// Has the library read something of the extent, and says where that was when it fails.
template <typename Read>
auto ReadAt(const Place& place, const Extent& extent, const Read& read) {
  try {
    return read();
  } catch (const std::runtime_error& error) {
    throw PayloadError(At(place, extent) + ": " + error.what());
  }
}

template <typename T>
void CheckValue(const Place& place, const Extent& extent, PayloadNotes& notes);

struct MemberNameSearch {
  const std::uint16_t wanted;
  const char* name = nullptr;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* memberName, const T&) {
    if (dataId == wanted) {
      name = memberName;
    }
  }
};

/// Null where the record has no such member.
template <typename Record>
const char* MemberName(std::uint16_t dataId) {
  MemberNameSearch search{dataId};
  const Record record{};
  Record::enumerate(record, search);
  return search.name;
}

/// Checks the one member whose data id was read.
struct MemberCheck {
  const std::uint16_t wanted;
  const Place& place;
  const Extent& extent;  // what follows the tag
  PayloadNotes& notes;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>&) const {
    Check<T>(dataId, name);
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const T&) const {
    Check<T>(dataId, name);
  }

 private:
  template <typename T>
  void Check(std::uint16_t dataId, const char* name) const {
    if (dataId == wanted) {
      CheckValue<T>(Place(place, name), extent, notes);
    }
  }
};

/// The place of the member that begins here, as far as its tag tells.
template <typename Record>
Place MemberPlace(const Place& place, const Extent& extent) {
  if (extent.size < common::kTagSize) {
    return place;
  }
  const auto tag = common::Deserializer<std::uint16_t>(extent.data, extent.size).getValue();
  const char* const name = MemberName<Record>(common::DataIdOfTag(tag));
  return name == nullptr ? place : Place(place, name);
}

template <typename Record>
void CheckMembers(const Place& place, Extent rest, PayloadNotes& notes) {
  const Record record{};
  while (rest.size > 0) {
    const common::MemberView member =
        ReadAt(MemberPlace<Record>(place, rest), rest, [&rest] { return common::ReadMember(rest.data, rest.size); });
    if (MemberName<Record>(member.dataId) == nullptr) {
      notes.push_back(At(place, rest) + ": no member has data id " + std::to_string(member.dataId));
    }
    const Extent value = rest.From(common::kTagSize).First(member.size);
    Record::enumerate(record, MemberCheck{member.dataId, place, value, notes});
    rest = rest.From(common::kTagSize + member.size);
  }
}

/// `decode` has the library decode the whole sequence. It looks at the extents of all elements before it decodes one.
template <typename Element, typename Decode>
void CheckElements(const Place& place, const Extent& content, const Decode& decode, PayloadNotes& notes) {
  std::vector<Extent> elements;
  for (Extent rest = content; rest.size > 0; rest = rest.From(elements.back().size)) {
    const std::uint64_t size = rest.SizeWithLength();
    if (size == 0) {
      ReadAt(Place(place, elements.size()), rest, decode);
      return;
    }
    elements.push_back(rest.First(size));
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    CheckValue<Element>(Place(place, i), elements[i], notes);
  }
}

template <typename T>
void CheckScalar(const Place& place, const Extent& extent, PayloadNotes& notes) {
  ReadAt(place, extent, [&extent] {
    ara::core::Optional<T> value;
    common::DeserializingEnumerator(extent.data, extent.size)(value);
  });
  if (extent.size > sizeof(T)) {
    notes.push_back(At(place, extent) + ": " + std::to_string(extent.size) + " bytes for a member of " +
                    std::to_string(sizeof(T)) + ", of which the first are read");
  }
}

template <typename T>
void CheckValue(const Place& place, const Extent& extent, PayloadNotes& notes) {
  if constexpr (common::kIsScalar<T>) {
    CheckScalar<T>(place, extent, notes);
  } else {
    const auto decode = [&extent] { common::Deserializer<T>(extent.data, extent.size).getValue(); };
    if (const std::uint64_t size = extent.SizeWithLength(); size != 0) {
      const Extent content = extent.First(size).From(common::kLengthFieldSize);
      if constexpr (common::kIsRecord<T>) {
        CheckMembers<T>(place, content, notes);
      } else if constexpr (common::kIsSequence<T>) {
        if constexpr (!common::kIsScalar<typename T::value_type>) {
          CheckElements<typename T::value_type>(place, content, decode, notes);
        }
      }
    }
    ReadAt(place, extent, decode);  // no part of it is wrong: what is wrong now is its own
  }
}

void NoteRest(const Extent& payload, PayloadNotes& notes);

}  // namespace detail

template <typename Value>
PayloadNotes CheckPayload(const unsigned char* data, std::uint64_t size) {
  const detail::Extent payload{data, size, 0};
  const Place whole;
  PayloadNotes notes;
  if (payload.SizeWithLength() != 0) {
    detail::CheckValue<Value>(whole, payload, notes);
  }
  detail::ReadAt(whole, payload, [&] { detail::common::DeserializeFieldValue<Value>(data, size); });
  detail::NoteRest(payload, notes);
  return notes;
}

}  // namespace tarn7::tool
