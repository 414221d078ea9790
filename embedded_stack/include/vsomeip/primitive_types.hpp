// The identifiers and counters of SOME/IP, each with the width it has on the wire.
#pragma once

#include <cstdint>

namespace vsomeip_v3 {

using byte_t = std::uint8_t;
using length_t = std::uint32_t;

using message_t = std::uint32_t;  // service id, then method id
using request_t = std::uint32_t;  // client id, then session id
using service_t = std::uint16_t;
using instance_t = std::uint16_t;
using method_t = std::uint16_t;
using event_t = std::uint16_t;
using eventgroup_t = std::uint16_t;
using client_t = std::uint16_t;
using session_t = std::uint16_t;

using major_version_t = std::uint8_t;
using minor_version_t = std::uint32_t;
using protocol_version_t = std::uint8_t;
using interface_version_t = std::uint8_t;
using ttl_t = std::uint32_t;
using port_t = std::uint16_t;

}  // namespace vsomeip_v3
