#pragma once

/// All records of the psd2 fields.
#include "interfaces/psd2/psd2_layers.h"
