#pragma once

#include <cstdint>

namespace ara::com {

/// How a subscription stands. While the provider is away it is pending: it comes back by itself.
enum class SubscriptionState : std::uint8_t { kSubscribed = 0, kNotSubscribed = 1, kSubscriptionPending = 2 };

}  // namespace ara::com
