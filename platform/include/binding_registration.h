#pragma once

#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::runtime {

/// Registers the SOME/IP binding with the communication runtime. Called when the binding's library is loaded; further
/// calls do nothing.
ARA_PLATFORM_API void Register();

}  // namespace ara::com::internal::vsomeip::runtime
