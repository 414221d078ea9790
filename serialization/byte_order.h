#pragma once

#include <cstddef>
#include <cstdint>

namespace ara::com::internal::vsomeip::common {

namespace detail {

// What std::byteswap will be. Shifts and masks would do; not every compiler makes one instruction of them everywhere.
inline std::uint8_t SwapBytes(std::uint8_t bits) noexcept { return bits; }
inline std::uint16_t SwapBytes(std::uint16_t bits) noexcept { return __builtin_bswap16(bits); }
inline std::uint32_t SwapBytes(std::uint32_t bits) noexcept { return __builtin_bswap32(bits); }
inline std::uint64_t SwapBytes(std::uint64_t bits) noexcept { return __builtin_bswap64(bits); }

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

/// From the host's byte order to big-endian, or back.
template <typename Bits>
Bits BigEndian(Bits bits) noexcept {
  static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ || __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__);
  return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? SwapBytes(bits) : bits;
}

}  // namespace detail

// The built-in copy: std::memcpy is checked where an application is built with _FORTIFY_SOURCE=3, which doubles the
// time of encoding. The sizes here are constants, and the callers have compared what there is.

/// Writes a scalar's sizeof(T) bytes to `target`, most significant first. Floating-point values go as their bit
/// pattern, a bool as the byte that it is stored as.
template <typename T>
void StoreBigEndian(const T& value, unsigned char* target) noexcept {
  typename detail::UnsignedOfSize<sizeof(T)>::Type bits;
  __builtin_memcpy(&bits, &value, sizeof(T));
  bits = detail::BigEndian(bits);
  __builtin_memcpy(target, &bits, sizeof(T));
}

/// Reads a scalar's sizeof(T) bytes from `source` into `target`. A bool takes the raw byte.
template <typename T>
void LoadBigEndian(const unsigned char* source, T& target) noexcept {
  typename detail::UnsignedOfSize<sizeof(T)>::Type bits;
  __builtin_memcpy(&bits, source, sizeof(T));
  bits = detail::BigEndian(bits);
  __builtin_memcpy(&target, &bits, sizeof(T));
}

}  // namespace ara::com::internal::vsomeip::common
