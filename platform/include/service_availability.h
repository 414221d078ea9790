#pragma once

#include <cstdint>
#include <functional>

#include "platform/include/service_instance.h"
#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::common {

/// Follows whether a service instance is offered, while it is requested (VSomeIPConnection::DoRequestService).
/// `handler` is called on a thread of the stack with each change that comes after this. Whoever follows an instance
/// first hears so of one that is available already; who follows it after others does not. Returns the token to take the
/// registration back with; a call that is under way then may still end after that.
///
/// The operations are optional: a platform may lack them, so they are weak and must be compared with null before they
/// are called. Without them neither the loss nor the return of a service shows in the subscription state.
__attribute__((weak)) ARA_PLATFORM_API std::uint64_t registerAvailabilityHandler(
    const ServiceInstance& service, std::function<void(bool available)> handler);
__attribute__((weak)) ARA_PLATFORM_API void unregisterAvailabilityHandler(std::uint64_t token);

}  // namespace ara::com::internal::vsomeip::common
