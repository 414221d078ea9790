#pragma once

#include <cstdint>
#include <vector>

#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

/// Calls a field's getter straight on the stack and returns the payload as it arrived. Throws CommandError
/// (kUnavailable) when the service is not there or does not answer in time, and (kCallFailed) for an error response.
std::vector<unsigned char> GetPayload(Loop& loop, const FieldAddress& address, std::uint16_t instance,
                                      Loop::TimePoint deadline);

}  // namespace tarn7::tool
