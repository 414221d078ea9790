#pragma once

#include <cstdint>

#include <vsomeip/vsomeip.hpp>

#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::common {

/// Whether a received message's header fits: service, method (or event) and interface version as given, and the message
/// type one of the two. `isMethodCall` tells methods from events; with `isRequest` the return code must be E_OK as
/// well, as it must in every request.
ARA_PLATFORM_API bool checkMessageMetaData(const ::vsomeip::message& message, std::uint16_t serviceId,
                                           std::uint16_t methodId, std::uint8_t interfaceVersion,
                                           ::vsomeip::message_type_e expectedType,
                                           ::vsomeip::message_type_e alternativeType, bool isMethodCall,
                                           bool isRequest);

/// Whether an id stands for "none": the interface's configuration lacks the method or event.
ARA_PLATFORM_API bool isMethodUndefined(std::uint16_t methodId) noexcept;
ARA_PLATFORM_API bool isEventUndefined(std::uint16_t eventId) noexcept;

/// Ends the process after a configuration error that leaves nothing sensible to do.
[[noreturn]] ARA_PLATFORM_API void abort() noexcept;

}  // namespace ara::com::internal::vsomeip::common
