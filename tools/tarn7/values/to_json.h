#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "core_types/optional.h"
#include "serialization/wire_type.h"
#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// A sequence of bytes of either kind: shown as hex digits.
template <typename T>
inline constexpr bool kIsBytes =
    ara::com::internal::vsomeip::common::kIsByteArray<T> || std::is_same_v<T, std::vector<std::uint8_t>>;

/// A value as JSON: a record as an object of its present members, bytes as hex digits, any other sequence as an array.
template <typename T>
Json ToJson(const T& value);

namespace detail {

struct MemberToJson {
  Json& object;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) const {
    if (member) {
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t, const char* name, const T& member) const {
    object[name] = ToJson(member);
  }
};

/// The number whose text has the fewest digits that identify the value in its own precision: the float 0.1 is 0.1, and
/// not 0.10000000149011612.
template <typename T>
Json FloatToJson(T value) {
  if (std::isnan(value)) {
    return "NaN";
  }
  if (std::isinf(value)) {
    return value > 0 ? "Infinity" : "-Infinity";
  }
  char text[64];
  const auto end = std::to_chars(text, text + sizeof(text), value, std::chars_format::scientific).ptr;
  double number = 0;
  std::from_chars(text, end, number);
  return number;
}

/// A bool from the network may hold any byte, which must not be read as a bool.
inline bool ReadBool(const bool& value) {
  unsigned char byte = 0;
  std::memcpy(&byte, &value, sizeof(byte));
  return byte != 0;
}

}  // namespace detail

template <typename T>
Json ToJson(const T& value) {
  namespace common = ara::com::internal::vsomeip::common;
  if constexpr (std::is_same_v<T, bool>) {
    return detail::ReadBool(value);
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<std::underlying_type_t<T>>(value);
  } else if constexpr (std::is_floating_point_v<T>) {
    return detail::FloatToJson(value);
  } else if constexpr (std::is_integral_v<T> || common::kIsString<T>) {
    return value;
  } else if constexpr (kIsBytes<T>) {
    return ToHex(value.data(), value.size());
  } else if constexpr (common::kIsSequence<T>) {
    Json array = Json::array();
    for (const auto& element : value) {
      array.push_back(ToJson(element));
    }
    return array;
  } else {
    Json object = Json::object();
    T::enumerate(value, detail::MemberToJson{object});
    return object;
  }
}

}  // namespace tarn7::tool
