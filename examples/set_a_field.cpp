// Sets a field: set_a_field [INSTANCE]
//
// Try it against a simulated vehicle: tarn7 simulate chargetimemanager

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "interfaces/chargetimemanager/chargetimemanager_proxy.h"

using kro::services::chargetimemanager::datatypes::DT_chargeTimeCalculations_struct;
using kro::services::chargetimemanager::proxy::ChargeTimeManagerProxy;

int main(int argc, char** argv) {
  const auto found = ChargeTimeManagerProxy::FindService(std::string(argc > 1 ? argv[1] : "1"));
  if (found.empty()) {
    std::cerr << "the charge time manager is not there" << std::endl;
    return EXIT_FAILURE;
  }
  ChargeTimeManagerProxy chargeTime(found.front());

  // A field's value is a sequence of records. What is not set is not sent.
  DT_chargeTimeCalculations_struct request;
  request.member0 = 1;
  request.member5 = std::vector<std::uint16_t>{80, 100};

  // The vehicle answers with the value that it took over, which need not be the one that it was sent.
  auto answer = chargeTime.chargeTimeCalculations.Set({request});
  if (answer.wait_for(std::chrono::seconds(2)) != ara::core::future_status::ready) {
    std::cerr << "no answer" << std::endl;
    return EXIT_FAILURE;
  }
  try {
    for (const auto& calculation : answer.get()) {  // throws where the vehicle answered with an error
      std::cout << "calculation " << calculation.member0.value_or(0) << ": ";
      std::cout << (calculation.member5 ? calculation.member5->size() : 0) << " targets" << std::endl;
    }
  } catch (const std::exception& error) {
    std::cerr << "the vehicle refused: " << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}
