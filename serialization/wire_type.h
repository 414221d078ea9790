#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace ara::com::internal::vsomeip::common {

/// How many bytes follow a member's tag: bits 14..12 of the tag.
enum class WireType : std::uint8_t {
  kOneByte = 0,
  kTwoBytes = 1,
  kFourBytes = 2,
  kEightBytes = 3,
  kLength32 = 4,         ///< a 4-byte length field, then that many bytes; the only length form that is written
  kLength8 = 5,          ///< a 1-byte length field; accepted, never written
  kLength16 = 6,         ///< a 2-byte length field; accepted, never written
  kLength32Dynamic = 7,  ///< a 4-byte length field; accepted, never written
};

inline constexpr std::size_t kTagSize = 2;
inline constexpr std::size_t kLengthFieldSize = 4;
inline constexpr std::uint16_t kMaxDataId = 0x0FFF;

constexpr std::uint16_t MakeTag(WireType type, std::uint16_t dataId) noexcept {
  return static_cast<std::uint16_t>((static_cast<unsigned>(type) << 12U) | (dataId & kMaxDataId));
}
constexpr WireType WireTypeOfTag(std::uint16_t tag) noexcept { return static_cast<WireType>((tag >> 12U) & 0x7U); }
constexpr std::uint16_t DataIdOfTag(std::uint16_t tag) noexcept { return tag & kMaxDataId; }

/// A number, a bool or an enumeration: written as its bytes, most significant first.
template <typename T>
inline constexpr bool kIsScalar = std::is_arithmetic_v<T> || std::is_enum_v<T>;

/// A std::vector: a byte count and the elements.
template <typename T>
inline constexpr bool kIsSequence = false;
template <typename T>
inline constexpr bool kIsSequence<std::vector<T>> = true;

/// A fixed-size array of bytes: copied as it stands.
template <typename T>
inline constexpr bool kIsByteArray = false;
template <std::size_t N>
inline constexpr bool kIsByteArray<std::array<std::uint8_t, N>> = true;

template <typename T>
inline constexpr bool kIsString = std::is_same_v<T, std::string>;

/// Everything else is a record: a type that lists its members (ara::core::Optional, or plain where required) through
/// `template <typename Record, typename Enumerator> static void enumerate(Record& record, Enumerator&& enumerator)`,
/// which calls `enumerator(dataId, name, record.member)` once per member, in the order in which they are written.
template <typename T>
inline constexpr bool kIsRecord = std::is_class_v<T> && !kIsSequence<T> && !kIsByteArray<T> && !kIsString<T>;

/// The wire type that a member of type T is written with.
template <typename T>
constexpr WireType WireTypeOf() noexcept {
  if constexpr (kIsScalar<T>) {
    static_assert(sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8,
                  "a scalar member must be 1, 2, 4 or 8 bytes wide");
    return sizeof(T) == 1   ? WireType::kOneByte
           : sizeof(T) == 2 ? WireType::kTwoBytes
           : sizeof(T) == 4 ? WireType::kFourBytes
                            : WireType::kEightBytes;
  } else {
    return WireType::kLength32;
  }
}

}  // namespace ara::com::internal::vsomeip::common
