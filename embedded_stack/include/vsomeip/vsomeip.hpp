// Everything an application needs.
#pragma once

#include "vsomeip/application.hpp"
#include "vsomeip/constants.hpp"
#include "vsomeip/message.hpp"
#include "vsomeip/payload.hpp"
#include "vsomeip/runtime.hpp"

namespace vsomeip = vsomeip_v3;
