#include <algorithm>
#include <iostream>
#include <memory>

#include "tools/tarn7/commands/common.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/field_values.h"
#include "tools/tarn7/stack/simulated_service.h"
#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/moving_value.h"

namespace tarn7::tool {

namespace {

/// One simulated interface with its values.
class Simulation {
 public:
  Simulation(StackApplication& application, const Interface& interface, std::uint16_t instance,
             const FieldValues& fixedValues, ValueSource& source)
      : interface_(interface),
        source_(source),
        service_(std::make_shared<SimulatedService>(application, interface, instance)) {
    for (const Field& field : interface.fields) {
      const auto fixed = fixedValues.find(&field);
      is_fixed_.push_back(fixed != fixedValues.end());
      values_.push_back(is_fixed_.back() ? fixed->second : source.First(*field.type));
    }
    service_->Offer(values_);
    ReportOffer(interface, instance);
  }

  void Move() {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (!is_fixed_[i]) {
        source_.Move(*interface_.fields[i].type, values_[i]);
        service_->Update(i, values_[i]);
      }
    }
  }

  /// Gives the field a recorded value, where it is of this interface.
  void Play(const Field& field, const Payload& payload) {
    const auto found = std::find_if(interface_.fields.begin(), interface_.fields.end(),
                                    [&field](const Field& own) { return &own == &field; });
    if (found != interface_.fields.end()) {
      service_->Update(static_cast<std::size_t>(found - interface_.fields.begin()), payload);
    }
  }

  void Stop() {
    service_->StopOffer();
    const SimulatedService::Counters counters = service_->GetCounters();
    std::cerr << interface_.name << ": " << Counted(counters.gets, "value") << " read, " << counters.sets << " set, "
              << counters.notifications << " notified" << std::endl;
  }

 private:
  const Interface& interface_;
  ValueSource& source_;
  std::shared_ptr<SimulatedService> service_;
  std::vector<Payload> values_;
  std::vector<bool> is_fixed_;
};

/// Moves and plays values until Ctrl-C.
void Run(Loop& loop, std::vector<Simulation>& simulations, Replay& replay, std::chrono::milliseconds period) {
  Loop::TimePoint now = Loop::Clock::now();
  Loop::TimePoint nextMove = now + period;
  replay.Start(now);
  for (;; now = Loop::Clock::now()) {
    if (now >= nextMove) {
      std::for_each(simulations.begin(), simulations.end(), [](Simulation& simulation) { simulation.Move(); });
      nextMove = std::max(nextMove + period, Loop::Clock::now());  // moves that were missed are not made up for
    }
    replay.PlayUntil(now, [&simulations](const Field& field, const Payload& payload) {
      for (Simulation& simulation : simulations) {
        simulation.Play(field, payload);
      }
    });
    loop.RunUntil(std::min(nextMove, replay.Next()), [] { return false; });
  }
}

}  // namespace

void Simulate(const Context& context, const SimulateOptions& options) {
  std::vector<const Interface*> interfaces;
  std::vector<FieldAddress> fields;
  for (const std::string& name : options.interfaces) {
    const Interface& interface = context.interfaces.FindInterface(name);
    if (interface.IsProvided() && interface.IsOfLibrary()) {
      throw CommandError(Status::kUsage, name + " is offered by the application, not by the vehicle: use tarn7 offer " +
                                             name + " --values FILE");
    }
    if (std::find(interfaces.begin(), interfaces.end(), &interface) == interfaces.end()) {
      interfaces.push_back(&interface);
      const auto own = context.interfaces.FindAddresses(name);
      fields.insert(fields.end(), own.begin(), own.end());
    }
  }
  RequireOneReaderOfStandardInput({{"--values", options.values_file == "-"}, {"--replay", options.replay.file == "-"}});
  Replay replay = ReadReplay(options.replay, fields);
  FieldValues fixedValues = replay.FirstValues();
  if (!options.values_file.empty()) {
    // A recorded value stays the field's first one.
    fixedValues.merge(ReadFieldValuesFile(options.values_file, fields));
  }

  Loop loop;
  ValueSource source;
  StackApplication application("tarn7-simulate");
  std::vector<Simulation> simulations;
  for (const Interface* interface : interfaces) {
    simulations.emplace_back(application, *interface, options.instance, fixedValues, source);
  }
  try {
    Run(loop, simulations, replay, std::chrono::milliseconds(options.period));
  } catch (const Interrupted&) {  // the usual way to end it
  }
  for (Simulation& simulation : simulations) {
    simulation.Stop();
  }
}

}  // namespace tarn7::tool
