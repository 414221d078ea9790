// An application as it talks to the vehicle: reads and follows the energy system, reads the consumption, asks for a
// charge time, and offers route values of its own.
//
//   demo_application [INSTANCE [SECONDS]]     instance 1 and 10 seconds if not given; 0 seconds: until Ctrl-C
//
// Try it against a simulated vehicle: tarn7 simulate energysystem routebasedconsumption chargetimemanager

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>

#include "interfaces/chargetimemanager/chargetimemanager_proxy.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

using kro::services::chargetimemanager::datatypes::DT_chargeTimeCalculations_struct;
using kro::services::chargetimemanager::proxy::ChargeTimeManagerProxy;
using kro::services::energysystem::proxy::EnergySystemProxy;
using kro::services::routebasedconsumption::proxy::RouteBasedConsumptionProxy;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;
namespace route_datatypes = kro::services::routebasedenergycontents::datatypes;

namespace {

constexpr std::chrono::seconds kSearchTimeout{10};
constexpr std::chrono::seconds kAnswerTimeout{2};
constexpr std::size_t kCacheSize = 16;  // notifications that may wait until they are fetched

template <typename T>
void Write(std::ostream& text, const T& value) {
  text << +value;
}
template <typename T>
void Write(std::ostream& text, const std::vector<T>& values) {
  text << values.size() << " values";
}

// Every member of a record is optional: a provider sends what it knows. A record lists its members itself.
struct MemberWriter {
  std::ostream& text;

  template <typename T>
  void operator()(std::uint16_t, const char* name, const ara::core::Optional<T>& member) const {
    if (member) {
      text << ' ' << name << '=';
      Write(text, *member);
    }
  }
};

template <typename Record>
void Print(const std::string& what, const std::vector<Record>& records) {
  std::ostringstream line;
  line << what << ":";
  for (const Record& record : records) {
    line << " {";
    Record::enumerate(record, MemberWriter{line});
    line << " }";
  }
  static std::mutex mutex;  // lines come from the main thread and from the stack's
  const std::lock_guard<std::mutex> lock(mutex);
  std::cout << line.str() << std::endl;
}

// SIGINT and SIGTERM, blocked in this thread and in all that it starts, so that they can be waited for.
sigset_t BlockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

// FindService looks once, so ask until the vehicle is there. StartFindService would call back instead.
template <typename Proxy>
Proxy Find(const std::string& name, const std::string& instance, const sigset_t& signals) {
  const auto giveUp = std::chrono::steady_clock::now() + kSearchTimeout;
  for (auto handles = Proxy::FindService(instance);; handles = Proxy::FindService(instance)) {
    if (!handles.empty()) {
      return Proxy(handles.front());
    }
    const timespec pause{0, 200'000'000};
    if (sigtimedwait(&signals, nullptr, &pause) > 0 || std::chrono::steady_clock::now() > giveUp) {
      throw std::runtime_error(name + ", instance " + instance + " was not found");
    }
  }
}

// Prints what a getter or setter answers. A future may be waited for; here for a limited time.
template <typename Value>
int Finish(const std::string& what, ara::core::Future<Value> answer) {
  if (answer.wait_for(kAnswerTimeout) != ara::core::future_status::ready) {
    std::cerr << what << ": no answer" << std::endl;
  } else if (const auto result = answer.GetResult()) {
    Print(what, result.value());
    return 1;
  } else {
    std::cerr << what << ": " << result.error().Message() << std::endl;
  }
  return 0;
}

// Follows a field. The handler runs on a thread of the SOME/IP stack whenever a notification has arrived.
template <typename Field>
void Follow(const std::string& name, Field& field, std::function<void(const typename Field::FieldType&)> received) {
  field.SetReceiveHandler([name, &field, received = std::move(received)] {
    field.GetNewSamples([&](auto sample) {
      Print("notified " + name, *sample);
      received(*sample);
    });
  });
  field.Subscribe(kCacheSize);
}

// Offers the route values. Before that, each field needs a value and something that answers its getter.
void Offer(RouteBasedEnergyContentsSkeleton& route) {
  const auto begin = [](auto& field, auto record) {
    field.Update({record});
    field.ServeCurrentValue();
  };
  begin(route.rwmStatus, route_datatypes::DT_rwmStatus_struct{1, 0, 0, std::uint8_t{0}, std::uint8_t{0}});
  begin(route.rangeOnRouteValues, route_datatypes::DT_rangeOnRouteValues_struct{0, 0});
  begin(route.routeBasedResidualEnergyValues, route_datatypes::DT_routeBasedResidualEnergyValues_struct{0, 80});
  begin(route.destinations, route_datatypes::DT_destinations_struct{1, 120, {}, {}, {}, {}});
  begin(route.targetSocChargings, route_datatypes::DT_targetSocChargings_struct{1, std::uint8_t{80}});
  route.OfferService();
}

constexpr int kCalls = 7;  // of getters and the setter

int Run(const std::string& instance, long seconds) {
  const sigset_t signals = BlockEndSignals();
  std::atomic<int> samples{0};
  std::atomic<int> updates{0};
  int answers = 0;
  {
    // Proxies are declared after what their handlers use: they end their subscriptions first.
    RouteBasedEnergyContentsSkeleton route({instance});
    Offer(route);
    auto energySystem = Find<EnergySystemProxy>("energysystem", instance, signals);
    auto consumption = Find<RouteBasedConsumptionProxy>("routebasedconsumption", instance, signals);
    auto chargeTime = Find<ChargeTimeManagerProxy>("chargetimemanager", instance, signals);

    answers += Finish("read     highVoltageBatteries", energySystem.highVoltageBatteries.Get());
    answers += Finish("read     lowVoltageBatteries", energySystem.lowVoltageBatteries.Get());
    answers += Finish("read     lowVoltageSystemInfo", energySystem.lowVoltageSystemInfo.Get());
    answers += Finish("read     notifications", energySystem.notifications.Get());
    answers += Finish("read     status", consumption.status.Get());
    answers += Finish("read     consumptionValues", consumption.consumptionValues.Get());
    DT_chargeTimeCalculations_struct request;
    request.member0 = 1;
    request.member5 = std::vector<std::uint16_t>{80, 100};
    answers += Finish("set      chargeTimeCalculations", chargeTime.chargeTimeCalculations.Set({request}));

    const auto count = [&samples](const auto&) { ++samples; };
    Follow("lowVoltageBatteries", energySystem.lowVoltageBatteries, count);
    Follow("lowVoltageSystemInfo", energySystem.lowVoltageSystemInfo, count);
    Follow("notifications", energySystem.notifications, count);
    // The interfaces name no units: this only shows how values that arrive lead to values that are offered.
    Follow("highVoltageBatteries", energySystem.highVoltageBatteries, [&](const auto& batteries) {
      ++samples;
      route_datatypes::DT_rangeOnRouteValues_struct range;
      range.member0 = batteries.empty() ? 0 : batteries.front().member0.value_or(0);
      range.member1 = *range.member0 * 4;
      route.rangeOnRouteValues.Update({range});
      Print("offered  rangeOnRouteValues", std::vector{range});
      ++updates;
    });
    const timespec duration{seconds, 0};
    sigtimedwait(&signals, nullptr, seconds == 0 ? nullptr : &duration);
  }
  std::cout << "got " << answers << " of " << kCalls << " answers, received " << samples
            << " notifications, updated the route " << updates << " times" << std::endl;
  return answers == kCalls && samples > 0 && updates > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc > 1 ? argv[1] : "1", argc > 2 ? std::strtol(argv[2], nullptr, 10) : 10);
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}
