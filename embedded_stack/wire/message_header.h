#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "embedded_stack/wire/byte_view.h"
#include "vsomeip/enumeration_types.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3::embedded {

inline constexpr std::size_t kHeaderSize = 16;
inline constexpr std::uint32_t kLengthBase = 8;  // header bytes that the length field counts
inline constexpr std::uint8_t kProtocolVersion = 1;
inline constexpr std::uint8_t kSegmentFlag = 0x20;  // in the message type: the message is a segment of a larger one

// The fixed part of a SOME/IP message.
struct MessageHeader {
  service_t service = 0;
  method_t method = 0;
  std::uint32_t length = kLengthBase;
  client_t client = 0;
  session_t session = 0;
  std::uint8_t protocol_version = kProtocolVersion;
  interface_version_t interface_version = 0;
  std::uint8_t type = 0;
  std::uint8_t return_code = 0;

  bool IsSegment() const { return (type & kSegmentFlag) != 0; }
  message_type_e Type() const { return static_cast<message_type_e>(type & ~kSegmentFlag); }
};

// What a message type asks for. Types with an acknowledge bit count as their plain ones.
bool IsRequest(message_type_e type);  // with and without return
bool IsResponse(message_type_e type);
bool IsNotification(message_type_e type);

// Nothing if fewer than 16 bytes are present. Whether `length` fits is the caller's question.
std::optional<MessageHeader> DecodeHeader(ByteView bytes);

// The header with a length field for `payload_size` bytes; header.length is not looked at.
std::array<std::uint8_t, kHeaderSize> EncodeHeader(const MessageHeader& header, std::size_t payload_size);

}  // namespace vsomeip_v3::embedded
