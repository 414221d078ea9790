// An application as it talks to the vehicle: it reads the batteries and the consumption, asks for a charge time, works
// out how far the energy reaches, offers its route and a map, and goes on when the vehicle restarts.
//
//   demo_application [INSTANCE [SECONDS [numbered]]]   instance 1, 15 seconds if not given; 0 seconds: until Ctrl-C
//
// `numbered` says that the vehicle numbers the values of a field, in the first member of the first record: then lost
// ones are noticed. scripts/demo has such a vehicle. This one does without:
// tarn7 simulate energysystem routebasedconsumption chargetimemanager

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "examples/ctrl_c.h"
#include "examples/map/map.h"
#include "interfaces/chargetimemanager/chargetimemanager_proxy.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "interfaces/psd2/psd2_skeleton.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

using kro::services::chargetimemanager::datatypes::DT_chargeTimeCalculations_struct;
using kro::services::psd2::skeleton::Psd2Skeleton;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;
namespace chargetimemanager = kro::services::chargetimemanager::proxy;
namespace energysystem = kro::services::energysystem::proxy;
namespace routebasedconsumption = kro::services::routebasedconsumption::proxy;
namespace route_datatypes = kro::services::routebasedenergycontents::datatypes;

namespace {

constexpr std::chrono::milliseconds kRound{100};
constexpr std::chrono::seconds kAnswerTimeout{5};
constexpr std::size_t kCacheSize = 16;  // notifications that may wait until they are fetched

/// One line at a time: they come from the main thread and from the stack's.
void Say(const std::string& text) { std::cout << text + '\n' << std::flush; }

std::string OneDecimal(double number) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << number;
  return text.str();
}

/// What was exchanged.
struct Counters {
  std::atomic<int> reads{0};
  std::atomic<int> sets{0};
  std::atomic<int> unanswered{0};
  std::atomic<int> samples{0};
  std::atomic<int> lost{0};
  std::atomic<int> updates{0};
  std::atomic<int> restarts{0};
};

struct Options {
  std::string instance = "1";
  std::chrono::seconds duration{15};  // 0: no end
  bool are_values_numbered = false;
};

/// Follows one field. Where its values are numbered, a number that is passed over is a value that was lost, and a
/// smaller one than before begins a new series.
template <typename Field>
class Follower {
 public:
  using Value = typename Field::FieldType;

  Follower(bool isNumbered, Counters& counters, std::function<void(const Value&)> received = nullptr)
      : is_numbered_(isNumbered), counters_(counters), received_(std::move(received)) {}
  Follower(const Follower&) = delete;
  Follower& operator=(const Follower&) = delete;

  /// The field's proxy must go before this follower: its destructor waits for handlers that run.
  void Follow(Field& field) {
    field.SetSubscriptionStateChangeHandler(
        [this](ara::com::SubscriptionState state) { is_there_ = state == ara::com::SubscriptionState::kSubscribed; });
    // On a thread of the SOME/IP stack, whenever a notification has arrived.
    field.SetReceiveHandler([this, &field] { field.GetNewSamples([this](auto sample) { Take(*sample); }); });
    field.Subscribe(kCacheSize);
  }

  bool IsThere() const { return is_there_; }

 private:
  void Take(const Value& value) {
    ++counters_.samples;
    if (is_numbered_ && !value.empty() && value.front().member0) {
      const std::uint32_t number = *value.front().member0;
      if (number > last_ + 1 && last_ != 0) {
        counters_.lost += static_cast<int>(number - last_ - 1);
      }
      last_ = number;
    }
    if (received_) {
      received_(value);
    }
  }

  const bool is_numbered_;
  Counters& counters_;
  const std::function<void(const Value&)> received_;
  std::uint32_t last_ = 0;  // receive handlers never overlap
  std::atomic<bool> is_there_{false};
};

/// The application's own services: the route, and the map that it drives on.
class Services {
 public:
  Services(const std::string& instance, Counters& counters)
      : counters_(counters), route_({instance}), map_({instance}) {
    // Before a service is offered, each field needs a value and something that answers its getter.
    const auto begin = [](auto& field, auto record) {
      field.Update({record});
      field.ServeCurrentValue();
    };
    begin(route_.rwmStatus, route_datatypes::DT_rwmStatus_struct{1, 0, 0, {}, {}});
    begin(route_.rangeOnRouteValues, route_datatypes::DT_rangeOnRouteValues_struct{0, 0});
    begin(route_.routeBasedResidualEnergyValues, route_datatypes::DT_routeBasedResidualEnergyValues_struct{0, 0});
    begin(route_.destinations,
          route_datatypes::DT_destinations_struct{1, example_map::kMainRoadLength, {}, {}, {}, {}});
    begin(route_.targetSocChargings, route_datatypes::DT_targetSocChargings_struct{1, 80});
    route_.OfferService();
    example_map::Fill(map_);
    map_.OfferService();
    Say("offers its route and a map of " + std::to_string(example_map::kMainRoadLength / 1000) + " km");
  }

  /// The vehicle is `metres` from where it began, and its energy reaches `range` metres further.
  void Update(std::uint32_t metres, std::uint32_t range) {
    route_.rangeOnRouteValues.Update({route_datatypes::DT_rangeOnRouteValues_struct{++number_, range}});
    map_.egoPositionLayer.Update(example_map::EgoPositionLayer(metres));
    counters_.updates += 2;
  }

 private:
  Counters& counters_;
  std::uint32_t number_ = 0;
  RouteBasedEnergyContentsSkeleton route_;
  Psd2Skeleton map_;
};

/// What the application wants of the vehicle.
class Application {
 public:
  Application(const Options& options, Counters& counters)
      : counters_(counters),
        services_(options.instance, counters),
        batteries_(options.are_values_numbered, counters),
        consumption_values_(options.are_values_numbered, counters, [this](const auto& values) { Remember(values); }),
        energy_contents_(options.are_values_numbered, counters, [this](const auto& values) { ComputeRange(values); }),
        calculations_(false, counters),
        energy_system_(energysystem::EnergySystemProxy::HandleType(options.instance)),
        consumption_(routebasedconsumption::RouteBasedConsumptionProxy::HandleType(options.instance)),
        charge_time_(chargetimemanager::ChargeTimeManagerProxy::HandleType(options.instance)) {
    batteries_.Follow(energy_system_.highVoltageBatteries);
    consumption_values_.Follow(consumption_.consumptionValues);
    energy_contents_.Follow(consumption_.energyContents);
    calculations_.Follow(charge_time_.chargeTimeCalculations);
  }

  /// Called again and again: notices that the vehicle is there, or gone.
  void Look() {
    const bool isThere =
        batteries_.IsThere() && consumption_values_.IsThere() && energy_contents_.IsThere() && calculations_.IsThere();
    const bool isGone = !batteries_.IsThere() && !consumption_values_.IsThere() && !energy_contents_.IsThere() &&
                        !calculations_.IsThere();
    if (isThere && !knows_vehicle_) {
      knows_vehicle_ = true;
      Say(++meetings_ == 1 ? "the vehicle is there" : "the vehicle is back: its values are read and set again");
      counters_.restarts = meetings_ - 1;
      Begin();
    } else if (isGone && knows_vehicle_) {
      knows_vehicle_ = false;
      Say("the vehicle is gone: waiting");
    }
  }

 private:
  /// Reads what changes slowly, and asks for a charge time.
  void Begin() {
    Finish(counters_.reads, energy_system_.highVoltageBatteries.Get(), [](const auto& batteries) {
      for (const auto& battery : batteries) {
        Say("read   the high-voltage battery: " + OneDecimal(battery.member1.value_or(0)) + " %");
      }
    });
    Finish(counters_.reads, energy_system_.lowVoltageBatteries.Get(),
           [](const auto& batteries) { Say("read   the low-voltage batteries: " + std::to_string(batteries.size())); });
    Finish(counters_.reads, consumption_.consumptionValues.Get(), [](const auto& values) {
      if (!values.empty()) {
        Say("read   the consumption: " + OneDecimal(values.front().member2.value_or(0)) + " kWh per 100 km");
      }
    });
    DT_chargeTimeCalculations_struct request;
    request.member0 = 1;
    request.member5 = std::vector<std::uint16_t>{80, 100};
    Finish(counters_.sets, charge_time_.chargeTimeCalculations.Set({request}),
           [](const auto&) { Say("set    the charge time to 80 % and to 100 % is asked for"); });
  }

  /// Waits for what a getter or setter answers; a future may be waited for, here for a limited time.
  template <typename Value, typename Use>
  void Finish(std::atomic<int>& counter, ara::core::Future<Value> answer, Use use) {
    if (answer.wait_for(kAnswerTimeout) == ara::core::future_status::ready) {
      if (const auto result = answer.GetResult()) {
        ++counter;
        use(result.value());
        return;
      }
    }
    ++counters_.unanswered;
  }

  // In this demonstration the consumption is in kilowatt hours per 100 kilometres, the energy in kilowatt hours: the
  // interfaces name no units.
  template <typename Values>
  void Remember(const Values& values) {
    if (!values.empty()) {
      kilowatt_hours_per_metre_ = values.front().member2.value_or(0) / 100'000;
    }
  }

  template <typename Values>
  void ComputeRange(const Values& values) {
    const double perMetre = kilowatt_hours_per_metre_;
    if (!knows_vehicle_ || values.empty() || perMetre <= 0) {
      return;
    }
    const double metres = values.front().member2.value_or(0) / perMetre;
    driven_ = (driven_ + kMetresPerSample) % example_map::kMainRoadLength;
    const std::uint32_t toGo = example_map::kMainRoadLength - driven_;
    Say("range  " + OneDecimal(metres / 1000) + " km, " + OneDecimal(toGo / 1000.0) +
        " km to go: " + (metres >= toGo ? "the energy is enough" : "it has to charge on the way"));
    services_.Update(driven_, static_cast<std::uint32_t>(metres));
  }

  static constexpr std::uint32_t kMetresPerSample = 1000;  // a demonstration is in a hurry

  Counters& counters_;
  std::atomic<double> kilowatt_hours_per_metre_{0};
  std::uint32_t driven_ = 0;
  std::atomic<bool> knows_vehicle_{false};
  int meetings_ = 0;
  // In this order: what handlers use is there before the proxies that call them, and outlives them.
  Services services_;
  Follower<energysystem::fields::highVoltageBatteries> batteries_;
  Follower<routebasedconsumption::fields::consumptionValues> consumption_values_;
  Follower<routebasedconsumption::fields::energyContents> energy_contents_;
  Follower<chargetimemanager::fields::chargeTimeCalculations> calculations_;
  energysystem::EnergySystemProxy energy_system_;
  routebasedconsumption::RouteBasedConsumptionProxy consumption_;
  chargetimemanager::ChargeTimeManagerProxy charge_time_;
};

int Run(const Options& options) {
  const example::CtrlC ctrlC;
  Counters counters;
  {
    Application application(options, counters);
    const auto end = std::chrono::steady_clock::now() + options.duration;
    const bool isEndless = options.duration.count() == 0;
    while (!ctrlC.PressedWithin(kRound) && (isEndless || std::chrono::steady_clock::now() < end)) {
      application.Look();
    }
  }
  Say("summary: " + std::to_string(counters.reads) + " getter calls, " + std::to_string(counters.sets) + " sets, " +
      std::to_string(counters.unanswered) + " unanswered, " + std::to_string(counters.samples) + " samples, " +
      std::to_string(counters.updates) + " updates, restarts: " + std::to_string(counters.restarts) +
      ", lost: " + std::to_string(counters.lost));
  const bool isComplete = counters.reads > 0 && counters.sets > 0 && counters.unanswered == 0 && counters.samples > 0 &&
                          counters.updates > 0 && counters.lost == 0;
  return isComplete ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (argc > 1) {
    options.instance = argv[1];
  }
  if (argc > 2) {
    options.duration = std::chrono::seconds(std::strtol(argv[2], nullptr, 10));
  }
  options.are_values_numbered = argc > 3 && argv[3] == std::string("numbered");
  try {
    return Run(options);
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}
