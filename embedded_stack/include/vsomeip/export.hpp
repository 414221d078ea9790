// The one macro that decides what the library shows to its users.
#pragma once

#define VSOMEIP_EXPORT __attribute__((visibility("default")))
#define VSOMEIP_IMPORT_EXPORT VSOMEIP_EXPORT
