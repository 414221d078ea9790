#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "core_types/optional.h"
#include "serialization/wire_type.h"
#include "tools/tarn7/values/to_json.h"

namespace tarn7::tool {

struct Member;

/// The type of a value, read from the record's own member list.
struct ValueType {
  enum class Kind : std::uint8_t { kBool, kInteger, kFloat, kString, kBytes, kSequence, kRecord };

  Kind kind;
  std::string name;                ///< as users see it: "uint32", "sequence of record"
  std::uint64_t max = 0;           ///< of an integer: its greatest value
  std::size_t size = 0;            ///< of a number: its bytes; of bytes: how many, 0 for any number
  std::vector<ValueType> element;  ///< of a sequence: exactly one
  std::vector<Member> members;     ///< of a record
};

struct Member {
  std::uint16_t data_id;
  std::string name;
  ValueType type;
};

template <typename T>
ValueType DescribeType();

namespace detail {

struct MemberDescriber {
  std::vector<Member>& members;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>&) const {
    members.push_back({dataId, name, DescribeType<T>()});
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const T&) const {
    members.push_back({dataId, name, DescribeType<T>()});
  }
};

template <typename T>
ValueType DescribeInteger() {
  const char* const sign = std::is_signed_v<T> ? "int" : "uint";
  ValueType type{ValueType::Kind::kInteger, sign + std::to_string(8 * sizeof(T)), 0, sizeof(T), {}, {}};
  type.max = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
  return type;
}

}  // namespace detail

template <typename T>
ValueType DescribeType() {
  namespace common = ara::com::internal::vsomeip::common;
  using Kind = ValueType::Kind;
  if constexpr (std::is_same_v<T, bool>) {
    return {Kind::kBool, "bool", 0, 0, {}, {}};
  } else if constexpr (std::is_enum_v<T>) {
    return detail::DescribeInteger<std::underlying_type_t<T>>();
  } else if constexpr (std::is_integral_v<T>) {
    return detail::DescribeInteger<T>();
  } else if constexpr (std::is_floating_point_v<T>) {
    return {Kind::kFloat, sizeof(T) == sizeof(float) ? "float" : "double", 0, sizeof(T), {}, {}};
  } else if constexpr (common::kIsString<T>) {
    return {Kind::kString, "string", 0, 0, {}, {}};
  } else if constexpr (common::kIsByteArray<T>) {
    constexpr std::size_t kSize = std::tuple_size_v<T>;
    return {Kind::kBytes, std::to_string(kSize) + " bytes", 0, kSize, {}, {}};
  } else if constexpr (kIsBytes<T>) {
    return {Kind::kBytes, "bytes", 0, 0, {}, {}};
  } else if constexpr (common::kIsSequence<T>) {
    ValueType element = DescribeType<typename T::value_type>();
    return {Kind::kSequence, "sequence of " + element.name, 0, 0, {std::move(element)}, {}};
  } else {
    ValueType type{Kind::kRecord, "record", 0, 0, {}, {}};
    const T record{};
    T::enumerate(record, detail::MemberDescriber{type.members});
    return type;
  }
}

}  // namespace tarn7::tool
