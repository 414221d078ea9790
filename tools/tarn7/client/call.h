#pragma once

#include <cstdint>
#include <functional>

#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

/// Starts a call on the field and passes on what is called when it is answered.
using StartCall = std::function<void(FieldClient& field, std::function<void()> answered)>;

/// Waits for the service, makes one call through the library's proxy, and returns the value of the answer. Throws
/// CommandError: kUnavailable when service or answer are not there in time, kCallFailed for an error.
Json Call(Loop& loop, const FieldAddress& address, std::uint16_t instance, Loop::TimePoint deadline,
          const StartCall& start);

}  // namespace tarn7::tool
