#pragma once

#include <type_traits>

namespace ara::core::internal {

/// Types in an order that matters: the fields of an interface, the interfaces of the library.
template <typename... Types>
struct TypeList {};

/// Calls `visitor` with a (value-less) object of each type, in the order of the list.
template <typename... Types, typename Visitor>
constexpr void ForEachType(TypeList<Types...>, Visitor&& visitor) {
  (visitor(Types{}), ...);
}

/// How often a type is in a list.
template <typename Type, typename List>
inline constexpr int kCountIn = 0;
template <typename Type, typename... Types>
inline constexpr int kCountIn<Type, TypeList<Types...>> = (0 + ... + int{std::is_same_v<Type, Types>});

/// Whether two lists have the same types, each of them once.
template <typename Left, typename Right>
inline constexpr bool kIsPermutation = false;
template <typename... Left, typename... Right>
inline constexpr bool kIsPermutation<TypeList<Left...>, TypeList<Right...>> =
    sizeof...(Left) == sizeof...(Right) && (true && ... && (kCountIn<Left, TypeList<Left...>> == 1)) &&
    (true && ... && (kCountIn<Left, TypeList<Right...>> == 1));

}  // namespace ara::core::internal
