// Enumerations of the message header and of the application interface.
#pragma once

#include <cstdint>

namespace vsomeip_v3 {

enum class message_type_e : std::uint8_t {
  MT_REQUEST = 0x00,
  MT_REQUEST_NO_RETURN = 0x01,
  MT_NOTIFICATION = 0x02,
  MT_REQUEST_ACK = 0x40,
  MT_REQUEST_NO_RETURN_ACK = 0x41,
  MT_NOTIFICATION_ACK = 0x42,
  MT_RESPONSE = 0x80,
  MT_ERROR = 0x81,
  MT_RESPONSE_ACK = 0xC0,
  MT_ERROR_ACK = 0xC1,
  MT_UNKNOWN = 0xFF
};

enum class return_code_e : std::uint8_t {
  E_OK = 0x00,
  E_NOT_OK = 0x01,
  E_UNKNOWN_SERVICE = 0x02,
  E_UNKNOWN_METHOD = 0x03,
  E_NOT_READY = 0x04,
  E_NOT_REACHABLE = 0x05,
  E_TIMEOUT = 0x06,
  E_WRONG_PROTOCOL_VERSION = 0x07,
  E_WRONG_INTERFACE_VERSION = 0x08,
  E_MALFORMED_MESSAGE = 0x09,
  E_WRONG_MESSAGE_TYPE = 0x0A,
  E_UNKNOWN = 0xFF
};

// Which of a node's own offers: those that other nodes cannot reach, those that they can, or both.
enum class offer_type_e : std::uint8_t { OT_LOCAL = 0x00, OT_REMOTE = 0x01, OT_ALL = 0x02 };

enum class state_type_e : std::uint8_t { ST_REGISTERED = 0x00, ST_DEREGISTERED = 0x01 };

// A field remembers its value: it goes to each new subscriber, and repeating it unchanged sends nothing.
enum class event_type_e : std::uint8_t {
  ET_EVENT = 0x00,
  ET_SELECTIVE_EVENT = 0x01,
  ET_FIELD = 0x02,
  ET_UNKNOWN = 0xFF
};

// Accepted everywhere and without effect here: this stack carries everything over UDP.
enum class reliability_type_e : std::uint8_t {
  RT_RELIABLE = 0x01,
  RT_UNRELIABLE = 0x02,
  RT_BOTH = 0x03,
  RT_UNKNOWN = 0xFF
};

}  // namespace vsomeip_v3
