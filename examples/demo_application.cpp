// Reads the energy system's fields and follows their notifications.
//
//   energysystem_monitor [INSTANCE [SECONDS]]     instance 1 and 10 seconds if not given; 0 seconds: until Ctrl-C
//
// Try it against a simulated vehicle: tarn7 simulate energysystem

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>

#include "interfaces/energysystem/energysystem_proxy.h"

using kro::services::energysystem::proxy::EnergySystemProxy;
namespace datatypes = kro::services::energysystem::datatypes;

namespace {

constexpr std::chrono::seconds kAnswerTimeout{2};
constexpr std::size_t kCacheSize = 16;  // notifications that may wait until they are fetched

std::mutex outputMutex;  // lines come from the main thread and from the stack's

// Every member of a record is optional: a provider sends what it knows.
template <typename T>
std::string Text(const ara::core::Optional<T>& member) {
  return member ? std::to_string(*member) : "-";
}

std::string Text(const datatypes::DT_highVoltageBatteries_struct& battery) {
  return Text(battery.member0) + " " + Text(battery.member1) + " " + Text(battery.member2);
}
std::string Text(const datatypes::DT_lowVoltageBatteries_struct& battery) {
  return Text(battery.member0) + " " + Text(battery.member1) + " " + Text(battery.member2);
}
std::string Text(const datatypes::DT_lowVoltageSystemInfo_struct& info) {
  return Text(info.member0) + " " + Text(info.member1) + " " + Text(info.member3);
}
std::string Text(const datatypes::DT_notifications_struct& notification) {
  return Text(notification.member0) + " " + Text(notification.member1);
}

template <typename Record>
void Print(const std::string& what, const std::vector<Record>& records) {
  std::string line = what + ":";
  for (const Record& record : records) {
    line += " [" + Text(record) + "]";
  }
  const std::lock_guard<std::mutex> lock(outputMutex);
  std::cout << line << std::endl;
}

// Reads a field's value with its getter. A future may be waited for; here for a limited time.
template <typename Field>
bool Read(const std::string& name, Field& field) {
  auto answer = field.Get();
  if (answer.wait_for(kAnswerTimeout) != ara::core::future_status::ready) {
    std::cerr << name << ": no answer" << std::endl;
    return false;
  }
  const auto result = answer.GetResult();
  if (!result) {
    std::cerr << name << ": " << result.error().Message() << std::endl;
    return false;
  }
  Print("read     " + name, result.value());
  return true;
}

// Follows a field. The handler runs on a thread of the SOME/IP stack whenever a notification has arrived.
template <typename Field>
void Follow(const std::string& name, Field& field, std::atomic<int>& samples) {
  field.SetReceiveHandler([name, &field, &samples] {
    field.GetNewSamples([&name, &samples](auto sample) {
      Print("notified " + name, *sample);
      ++samples;
    });
  });
  field.Subscribe(kCacheSize);
}

// Blocks SIGINT and SIGTERM in this thread and in all that it starts, so that they can be waited for.
sigset_t BlockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void WaitForEnd(const sigset_t& signals, long seconds) {
  const timespec duration{seconds, 0};
  sigtimedwait(&signals, nullptr, seconds == 0 ? nullptr : &duration);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string instance = argc > 1 ? argv[1] : "1";
  const long seconds = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 10;
  const sigset_t signals = BlockEndSignals();

  // FindService looks once, so ask until the vehicle is there. StartFindService would call back instead.
  auto handles = EnergySystemProxy::FindService(instance);
  for (const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10); handles.empty();) {
    if (std::chrono::steady_clock::now() > giveUp) {
      std::cerr << "energysystem, instance " << instance << " is not offered" << std::endl;
      return EXIT_FAILURE;
    }
    const timespec pause{0, 200'000'000};
    if (sigtimedwait(&signals, nullptr, &pause) > 0) {
      return EXIT_FAILURE;
    }
    handles = EnergySystemProxy::FindService(instance);
  }

  std::atomic<int> samples{0};
  int reads = 0;
  {
    EnergySystemProxy energySystem(handles.front());
    reads += Read("highVoltageBatteries", energySystem.highVoltageBatteries);
    reads += Read("lowVoltageBatteries", energySystem.lowVoltageBatteries);
    reads += Read("lowVoltageSystemInfo", energySystem.lowVoltageSystemInfo);
    reads += Read("notifications", energySystem.notifications);

    Follow("highVoltageBatteries", energySystem.highVoltageBatteries, samples);
    Follow("lowVoltageBatteries", energySystem.lowVoltageBatteries, samples);
    Follow("lowVoltageSystemInfo", energySystem.lowVoltageSystemInfo, samples);
    Follow("notifications", energySystem.notifications, samples);
    WaitForEnd(signals, seconds);
  }  // The proxy ends its subscriptions; afterwards no handler runs.

  std::cout << "read " << reads << " of 4 fields, received " << samples << " notifications" << std::endl;
  return reads == 4 && samples > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
