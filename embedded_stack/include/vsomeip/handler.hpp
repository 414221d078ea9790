// The callbacks that an application registers. All of them run on dispatch threads (see application.hpp).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "vsomeip/enumeration_types.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

class message;
class payload;

using state_handler_t = std::function<void(state_type_e)>;
using offered_services_handler_t = std::function<void(const std::vector<std::pair<service_t, instance_t>>&)>;
using message_handler_t = std::function<void(const std::shared_ptr<message>&)>;
using availability_handler_t = std::function<void(service_t, instance_t, bool)>;

// The last argument is 0 for an acknowledged subscription and another value for a rejected one.
using subscription_status_handler_t =
    std::function<void(const service_t, const instance_t, const eventgroup_t, const event_t, const std::uint16_t)>;

// Compares the present value of a field with a new one; true if the new one is to be sent.
using epsilon_change_func_t = std::function<bool(const std::shared_ptr<payload>&, const std::shared_ptr<payload>&)>;

}  // namespace vsomeip_v3
