#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ara::com::internal::vsomeip::common {

namespace detail {
template <std::size_t Size>
struct UnsignedOfSize;
template <>
struct UnsignedOfSize<1> {
  using Type = std::uint8_t;
};
template <>
struct UnsignedOfSize<2> {
  using Type = std::uint16_t;
};
template <>
struct UnsignedOfSize<4> {
  using Type = std::uint32_t;
};
template <>
struct UnsignedOfSize<8> {
  using Type = std::uint64_t;
};
}  // namespace detail

/// Writes a scalar's sizeof(T) bytes to `target`, most significant first. Floating-point values go as their bit
/// pattern, a bool as the byte that it is stored as.
template <typename T>
void StoreBigEndian(const T& value, unsigned char* target) noexcept {
  using Bits = typename detail::UnsignedOfSize<sizeof(T)>::Type;
  Bits bits;
  std::memcpy(&bits, &value, sizeof(T));
  for (std::size_t i = sizeof(T); i-- > 0;) {
    target[i] = static_cast<unsigned char>(bits & 0xFFU);
    if constexpr (sizeof(T) > 1) {
      bits = static_cast<Bits>(bits >> 8U);
    }
  }
}

/// Reads a scalar's sizeof(T) bytes from `source` into `target`. A bool takes the raw byte.
template <typename T>
void LoadBigEndian(const unsigned char* source, T& target) noexcept {
  using Bits = typename detail::UnsignedOfSize<sizeof(T)>::Type;
  Bits bits = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    if constexpr (sizeof(T) > 1) {
      bits = static_cast<Bits>(bits << 8U);
    }
    bits = static_cast<Bits>(bits | source[i]);
  }
  std::memcpy(&target, &bits, sizeof(T));
}

}  // namespace ara::com::internal::vsomeip::common
