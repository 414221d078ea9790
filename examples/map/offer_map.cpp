// Offers the example map until Ctrl-C, while the vehicle drives along its main road: offer_map [INSTANCE]
//
// Look at it from another shell: tarn7 get psd2/laneLayer

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "examples/ctrl_c.h"
#include "examples/map/map.h"

int main(int argc, char** argv) {
  const example::CtrlC ctrlC;
  try {
    kro::services::psd2::skeleton::Psd2Skeleton map({argc > 1 ? argv[1] : "1"});
    example_map::Fill(map);
    map.OfferService();
    std::cerr << "offering the example map" << std::endl;
    constexpr std::uint32_t kMetresPerSecond = 14;
    for (std::uint32_t metres = 0; !ctrlC.PressedWithin(std::chrono::seconds(1));) {
      metres = (metres + kMetresPerSecond) % example_map::kMainRoadLength;
      map.egoPositionLayer.Update(example_map::EgoPositionLayer(metres));
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}
