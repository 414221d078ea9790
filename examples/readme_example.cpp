#include <chrono>
#include <iostream>

#include "interfaces/energysystem/energysystem_proxy.h"

int main() {
  using kro::services::energysystem::proxy::EnergySystemProxy;
  for (const auto& handle : EnergySystemProxy::FindService()) {  // every instance that is offered now
    EnergySystemProxy energySystem(handle);
    auto answer = energySystem.notifications.Get();
    if (answer.wait_for(std::chrono::seconds(2)) == ara::core::future_status::ready) {
      for (const auto& notification : answer.get()) {  // throws where the vehicle answered with an error
        std::cout << "instance " << handle.GetInstanceId().ToString() << ": " << notification.member0.value_or(0)
                  << '\n';
      }
    }
  }
}
