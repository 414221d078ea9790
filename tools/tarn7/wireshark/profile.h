#pragma once

#include <deque>
#include <map>
#include <string>

#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// The files of a Wireshark profile, by name, that make its SOME/IP dissector show the interfaces' services, methods,
/// events and record members by name. A member is found with the display filter
/// `someip.payload.INTERFACE.FIELD.MEMBER`.
std::map<std::string, std::string> MakeWiresharkProfile(const std::deque<Interface>& interfaces);

}  // namespace tarn7::tool
