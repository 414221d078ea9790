// Reads a field once: read_a_field [INSTANCE]
//
// Try it against a simulated vehicle: tarn7 simulate energysystem

#include <chrono>
#include <cstdlib>
#include <iostream>

#include "interfaces/energysystem/energysystem_proxy.h"

using kro::services::energysystem::proxy::EnergySystemProxy;

int main(int argc, char** argv) {
  // The instances that are offered now. A vehicle may have several; this looks for one of them.
  const auto found = EnergySystemProxy::FindService(std::string(argc > 1 ? argv[1] : "1"));
  if (found.empty()) {
    std::cerr << "the energy system is not there" << std::endl;
    return EXIT_FAILURE;
  }
  EnergySystemProxy energySystem(found.front());

  // The answer comes as a future. Nobody may answer, so the wait has an end.
  auto answer = energySystem.highVoltageBatteries.Get();
  if (answer.wait_for(std::chrono::seconds(2)) != ara::core::future_status::ready) {
    std::cerr << "no answer" << std::endl;
    return EXIT_FAILURE;
  }
  // It is a value or an error code. (answer.get() would throw the error.)
  const auto batteries = answer.GetResult();
  if (!batteries) {
    std::cerr << "the vehicle refused: " << batteries.error().Message() << std::endl;
    return EXIT_FAILURE;
  }
  for (const auto& battery : batteries.value()) {
    // Every member is optional: the vehicle sends what it knows.
    std::cout << "battery " << battery.member0.value_or(0) << ": ";
    if (battery.member1) {
      std::cout << *battery.member1 << std::endl;
    } else {
      std::cout << "unknown" << std::endl;
    }
  }
}
