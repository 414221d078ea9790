#pragma once

#include <cstddef>
#include <vector>

#include "benchmarks/values.h"
#include "interfaces/psd2/psd2_datatypes.h"

namespace benchmarks {

using LinkLayer = std::vector<kro::services::psd2::datatypes::DT_linkLayerLongRange_struct>;

/// A psd2 link layer. Every member but the layer's description is present; the sequences in a link hold two elements
/// each.
inline LinkLayer BuildLayer(std::size_t links) {
  const MemberFiller filler(2);
  LinkLayer layer(1);
  layer[0].member0.emplace().fill(0x11);
  for (auto& link : layer[0].member1.emplace(links)) {
    kro::services::psd2::datatypes::DT_link::enumerate(link, filler);
  }
  return layer;
}

}  // namespace benchmarks
