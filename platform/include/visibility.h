#pragma once

/// Marks an operation that a library of the platform offers.
#define ARA_PLATFORM_API __attribute__((visibility("default")))
