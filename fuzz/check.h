#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// What must hold for every input. Ends the process, which libFuzzer reports with the input.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace fuzz
