#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>

namespace tarn7::tool {

/// "demo (process 4711)". A name that is no plain word is quoted: processes choose their names.
std::string ProcessName(pid_t process);

/// The processes that have bound a UDP port, as "demo (process 4711), tarn7 (process 4712)"; empty where there are
/// none. With an address ("127.0.0.1") only those that have bound it there or at any address.
std::string UdpPortHolders(std::uint16_t port, const std::string& address = "");

}  // namespace tarn7::tool
