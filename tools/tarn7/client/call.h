#pragma once

#include <functional>

#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/client/service_client.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// Starts a call on the field and passes on what is called when it is answered.
using StartCall = std::function<void(FieldClient& field, std::function<void()> answered)>;

/// Waits for the service, and makes one call, whose answer can then be taken from the field's client. Throws
/// CommandError (kUnavailable) when service or answer are not there in time.
void Call(Loop& loop, const FieldAddress& address, ServiceClient& service, FieldClient& field, Loop::TimePoint deadline,
          const StartCall& start);

}  // namespace tarn7::tool
