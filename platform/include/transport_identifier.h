#pragma once

#include <cstdint>

#include "core_types/optional.h"
#include "platform/include/instance_identifier.h"
#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::common {

/// The 16-bit SOME/IP instance id that an identifier stands for; absent when it stands for none.
ARA_PLATFORM_API ara::core::Optional<std::uint16_t> ToTransportIdentifier(const InstanceIdentifier& identifier);
/// The identifier of a SOME/IP instance id.
ARA_PLATFORM_API InstanceIdentifier FromTransportIdentifier(const std::uint16_t& instanceId);

}  // namespace ara::com::internal::vsomeip::common
