#include "embedded_stack/wire/message_header.h"

namespace vsomeip_v3::embedded {

bool IsRequest(message_type_e type) {
  return type == message_type_e::MT_REQUEST || type == message_type_e::MT_REQUEST_NO_RETURN ||
         type == message_type_e::MT_REQUEST_ACK || type == message_type_e::MT_REQUEST_NO_RETURN_ACK;
}

bool IsResponse(message_type_e type) {
  return type == message_type_e::MT_RESPONSE || type == message_type_e::MT_ERROR ||
         type == message_type_e::MT_RESPONSE_ACK || type == message_type_e::MT_ERROR_ACK;
}

bool IsNotification(message_type_e type) {
  return type == message_type_e::MT_NOTIFICATION || type == message_type_e::MT_NOTIFICATION_ACK;
}

std::optional<MessageHeader> DecodeHeader(ByteView bytes) {
  ByteReader reader(bytes);
  MessageHeader header;
  header.service = reader.U16();
  header.method = reader.U16();
  header.length = reader.U32();
  header.client = reader.U16();
  header.session = reader.U16();
  header.protocol_version = reader.U8();
  header.interface_version = reader.U8();
  header.type = reader.U8();
  header.return_code = reader.U8();
  if (reader.Failed()) return std::nullopt;
  return header;
}

std::array<std::uint8_t, kHeaderSize> EncodeHeader(const MessageHeader& header, std::size_t payload_size) {
  const auto high = [](std::uint32_t number) { return static_cast<std::uint8_t>(number >> 8U); };
  const auto low = [](std::uint32_t number) { return static_cast<std::uint8_t>(number); };
  const auto length = static_cast<std::uint32_t>(payload_size) + kLengthBase;
  return {high(header.service),    low(header.service),      high(header.method),  low(header.method),
          high(length >> 16U),     low(length >> 16U),       high(length),         low(length),
          high(header.client),     low(header.client),       high(header.session), low(header.session),
          header.protocol_version, header.interface_version, header.type,          header.return_code};
}

}  // namespace vsomeip_v3::embedded
