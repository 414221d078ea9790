#pragma once

namespace ara::core::internal {

/// Types in an order that matters: the fields of an interface, the interfaces of the library.
template <typename... Types>
struct TypeList {};

/// Calls `visitor` with a (value-less) object of each type, in the order of the list.
template <typename... Types, typename Visitor>
constexpr void ForEachType(TypeList<Types...>, Visitor&& visitor) {
  (visitor(Types{}), ...);
}

}  // namespace ara::core::internal
