#pragma once

#include <cstddef>
#include <cstdint>

#include "core_types/type_list.h"

namespace ara::com::internal::vsomeip::common {

/// The identifiers of one field, all derived from its getter's method id: the notifier event is the getter with bit 15
/// set, the eventgroup has the event's number.
template <typename ServiceDescriptor, std::uint16_t GetterMethodId, typename T>
struct FieldDescriptor {
  static_assert((GetterMethodId & 0x8000U) == 0, "bit 15 marks events: a getter is a method");

  using Service = ServiceDescriptor;
  using ValueType = T;

  static constexpr bool is_mutable = false;
  static constexpr std::uint16_t getter_method_id = GetterMethodId;
  static constexpr std::uint16_t event_id = GetterMethodId | 0x8000U;
  static constexpr std::uint16_t event_groups[1] = {event_id};
};

/// A field that clients may write: its setter's id follows the getter's.
template <typename ServiceDescriptor, std::uint16_t GetterMethodId, typename T>
struct MutableFieldDescriptor : FieldDescriptor<ServiceDescriptor, GetterMethodId, T> {
  static constexpr bool is_mutable = true;
  static constexpr std::uint16_t setter_method_id = GetterMethodId + 1;
};

/// Whether no two fields of a list share a getter, and with it an event and an eventgroup, and no setter is another
/// field's getter.
template <typename... Fields>
constexpr bool HasDistinctIds(ara::core::internal::TypeList<Fields...>) {
  constexpr std::uint16_t getters[] = {Fields::getter_method_id...};
  constexpr bool is_mutable[] = {Fields::is_mutable...};
  for (std::size_t i = 0; i < sizeof...(Fields); ++i) {
    for (std::size_t j = 0; j < sizeof...(Fields); ++j) {
      if (i != j && (getters[i] == getters[j] || (is_mutable[i] && getters[i] + 1 == getters[j]))) {
        return false;
      }
    }
  }
  return true;
}

using ara::core::internal::ForEachType;
using ara::core::internal::TypeList;

}  // namespace ara::com::internal::vsomeip::common
