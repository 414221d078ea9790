#pragma once

#include <cstdint>

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

/// Types in an order that matters: the fields of an interface, the interfaces of the library.
template <typename... Types>
struct TypeList {};

/// Calls `visitor` with a (value-less) object of each type, in the order of the list.
template <typename... Types, typename Visitor>
constexpr void ForEachType(TypeList<Types...>, Visitor&& visitor) {
  (visitor(Types{}), ...);
}

}  // namespace ara::com::internal::vsomeip::common
