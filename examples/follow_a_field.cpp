// Follows a field until Ctrl-C: follow_a_field [INSTANCE]
//
// Start and end a simulated vehicle meanwhile, as often as you like: tarn7 simulate energysystem

#include <iostream>

#include "examples/ctrl_c.h"
#include "interfaces/energysystem/energysystem_proxy.h"

using kro::services::energysystem::proxy::EnergySystemProxy;

int main(int argc, char** argv) {
  const example::CtrlC ctrlC;

  // A handle that FindService yields says that the service is there. One that is made by hand does without: the proxy
  // waits for the service, now and after each of its restarts.
  EnergySystemProxy energySystem(EnergySystemProxy::HandleType(std::string(argc > 1 ? argv[1] : "1")));
  auto& batteries = energySystem.lowVoltageBatteries;

  batteries.SetSubscriptionStateChangeHandler([](ara::com::SubscriptionState state) {
    std::cout << (state == ara::com::SubscriptionState::kSubscribed ? "subscribed" : "waiting") << std::endl;
  });

  // Runs on a thread of the SOME/IP stack after each notification; its calls never overlap. It takes all that waits.
  batteries.SetReceiveHandler([&batteries] {
    batteries.GetNewSamples([](auto sample) {
      std::cout << sample->size() << " batteries";
      for (const auto& battery : *sample) {
        std::cout << ", " << battery.member0.value_or(0);
      }
      std::cout << std::endl;
    });
  });

  // Last, so that no notification comes before its handler. Up to 16 may wait; then the oldest is dropped. The first is
  // the value as it stands.
  batteries.Subscribe(16);

  ctrlC.Wait();
  // The proxy's destructor ends the subscription. No handler runs any more after that.
}
