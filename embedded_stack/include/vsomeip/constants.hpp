// Defaults and wildcards of the application interface.
#pragma once

#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

inline constexpr major_version_t DEFAULT_MAJOR = 0x00;
inline constexpr minor_version_t DEFAULT_MINOR = 0x00000000;
inline constexpr ttl_t DEFAULT_TTL = 0xFFFFFF;  // until the next reboot

inline constexpr service_t ANY_SERVICE = 0xFFFF;
inline constexpr instance_t ANY_INSTANCE = 0xFFFF;
inline constexpr method_t ANY_METHOD = 0xFFFF;
inline constexpr event_t ANY_EVENT = 0xFFFF;
inline constexpr eventgroup_t ANY_EVENTGROUP = 0xFFFF;
inline constexpr client_t ANY_CLIENT = 0xFFFF;
inline constexpr major_version_t ANY_MAJOR = 0xFF;
inline constexpr minor_version_t ANY_MINOR = 0xFFFFFFFF;
inline constexpr port_t ANY_PORT = 0;

inline constexpr eventgroup_t DEFAULT_EVENTGROUP = 0x0001;
inline constexpr client_t ILLEGAL_CLIENT = 0x0000;
inline constexpr port_t ILLEGAL_PORT = 0xFFFF;
inline constexpr method_t INVALID_METHOD = 0x0000;

}  // namespace vsomeip_v3
