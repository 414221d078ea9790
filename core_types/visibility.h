#pragma once

/// Marks what the product exports: the registry's entry points, the proxy bases and binding classes, the skeletons.
/// Everything else is hidden. Exception types need no mark: the C++ runtime tells types apart by name.
#define TARN7_EXPORT __attribute__((visibility("default")))
