#pragma once

#include <cstdint>
#include <stdexcept>

#include "serialization/scalar_deserializer.h"
#include "serialization/wire_type.h"

namespace ara::com::internal::vsomeip::common {

/// One member of a record as it lies in the received bytes.
struct MemberView {
  std::uint16_t dataId;
  const unsigned char* data;  ///< the bytes after the tag, a length field included
  std::uint64_t size;         ///< their number
};

/// The size of the value after a tag, its length field included; `remaining` bytes follow the tag. Throws where they
/// end inside the length field. The result may exceed `remaining`: the caller checks it.
inline std::uint64_t MemberSize(WireType type, const unsigned char* data, std::uint64_t remaining) {
  switch (type) {
    case WireType::kOneByte:
      return 1;
    case WireType::kTwoBytes:
      return 2;
    case WireType::kFourBytes:
      return 4;
    case WireType::kEightBytes:
      return 8;
    case WireType::kLength8:
      return std::uint64_t{Deserializer<std::uint8_t>(data, remaining).getValue()} + sizeof(std::uint8_t);
    case WireType::kLength16:
      return std::uint64_t{Deserializer<std::uint16_t>(data, remaining).getValue()} + sizeof(std::uint16_t);
    case WireType::kLength32:
    case WireType::kLength32Dynamic:
      break;
  }
  return std::uint64_t{Deserializer<std::uint32_t>(data, remaining).getValue()} + sizeof(std::uint32_t);
}

/// Finds the member at `position`, where `remaining` bytes of its record are left. Throws std::runtime_error where the
/// record ends inside the tag, the length field or a number, or where a length reaches beyond the record: nothing of
/// the member is read then, whether its data id is known or not.
inline MemberView ReadMember(const unsigned char* position, std::uint64_t remaining) {
  const std::uint16_t tag = Deserializer<std::uint16_t>(position, remaining).getValue();
  const unsigned char* const data = position + kTagSize;
  const std::uint64_t left = remaining - kTagSize;
  const WireType type = WireTypeOfTag(tag);
  const std::uint64_t size = MemberSize(type, data, left);
  if (size > left) {
    throw std::runtime_error(type < WireType::kLength32
                                 ? kScalarTooShort
                                 : "Deserialization of structure failed, declared size excess data length.");
  }
  return {DataIdOfTag(tag), data, size};
}

}  // namespace ara::com::internal::vsomeip::common
