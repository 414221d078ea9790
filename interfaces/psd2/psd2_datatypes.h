// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

/// All records of the psd2 fields.
#include "interfaces/psd2/psd2_layers.h"
