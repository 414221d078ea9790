#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "core_types/optional.h"
#include "serialization/wire_type.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/json_scalars.h"
#include "tools/tarn7/values/place.h"
#include "tools/tarn7/values/to_json.h"

namespace tarn7::tool {

/// Reads what ToJson writes. Throws ValueError, which names the place, for a wrong type, an unknown member, or a number
/// that does not fit.
template <typename T>
T FromJson(const Json& json, const Place& place = Place());

namespace detail {

struct MemberNames {
  std::vector<std::string>& names;

  template <typename T>
  void operator()(std::uint16_t, const char* name, const T&) const {
    names.emplace_back(name);
  }
};

struct MemberFromJson {
  const Json& object;
  const Place& place;

  template <typename T>
  void operator()(std::uint16_t, const char* name, ara::core::Optional<T>& member) const {
    const auto found = object.find(name);
    if (found != object.end()) {
      member = FromJson<T>(*found, Place(place, name));
    }
  }
  template <typename T>
  void operator()(std::uint16_t, const char* name, T& member) const {
    const auto found = object.find(name);
    if (found == object.end()) {
      Place(place, name).Fail("this member is required");
    }
    member = FromJson<T>(*found, Place(place, name));
  }
};

template <typename T>
T RecordFromJson(const Json& json, const Place& place) {
  T record{};
  std::vector<std::string> names;
  T::enumerate(record, MemberNames{names});
  RequireObjectOf(json, names, place);
  T::enumerate(record, MemberFromJson{json, place});
  return record;
}

template <typename T>
T BytesFromJson(const Json& json, const Place& place) {
  std::vector<std::uint8_t> bytes = BytesFromHex(json, place);
  if constexpr (std::is_same_v<T, std::vector<std::uint8_t>>) {
    return bytes;
  } else {
    T array{};
    if (bytes.size() != array.size()) {
      place.Fail("expected exactly " + std::to_string(array.size()) + " bytes, found " + std::to_string(bytes.size()));
    }
    std::copy(bytes.begin(), bytes.end(), array.begin());
    return array;
  }
}

}  // namespace detail

template <typename T>
T FromJson(const Json& json, const Place& place) {
  namespace common = ara::com::internal::vsomeip::common;
  if constexpr (std::is_same_v<T, bool>) {
    return BoolFromJson(json, place);
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(FromJson<std::underlying_type_t<T>>(json, place));
  } else if constexpr (std::is_floating_point_v<T>) {
    return FloatFromJson<T>(json, place);
  } else if constexpr (std::is_integral_v<T>) {
    return IntegerFromJson<T>(json, place);
  } else if constexpr (common::kIsString<T>) {
    return StringFromJson(json, place);
  } else if constexpr (kIsBytes<T>) {
    return detail::BytesFromJson<T>(json, place);
  } else if constexpr (common::kIsSequence<T>) {
    RequireArray(json, place);
    T sequence;
    sequence.reserve(json.size());
    for (const Json& element : json) {
      sequence.push_back(FromJson<typename T::value_type>(element, Place(place, sequence.size())));
    }
    return sequence;
  } else {
    return detail::RecordFromJson<T>(json, place);
  }
}

}  // namespace tarn7::tool
