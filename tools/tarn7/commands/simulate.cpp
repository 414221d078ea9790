#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/field_values.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/stack/simulated_service.h"
#include "tools/tarn7/values/moving_value.h"

namespace tarn7::tool {

namespace {

struct SimulateOptions : ServiceOptions {
  std::vector<std::string> interfaces;
  std::uint32_t period = 1000;  // in milliseconds
  std::string values_file;
  ReplayOptions replay;
};

/// One simulated interface with its values.
class Simulation {
 public:
  Simulation(StackApplication& application, const Interface& interface, std::uint16_t instance,
             const FieldValues& fixedValues, ValueSource& source)
      : interface_(interface),
        source_(source),
        service_(std::make_shared<SimulatedService>(application, interface, instance)) {
    std::vector<std::vector<unsigned char>> payloads;
    for (const auto& field : interface.fields) {
      const auto fixed = fixedValues.find(field.get());
      is_fixed_.push_back(fixed != fixedValues.end());
      values_.push_back(is_fixed_.back() ? fixed->second : source.First(field->Type()));
      payloads.push_back(field->Encode(values_.back()));
    }
    service_->Offer(std::move(payloads));
    ReportOffer(interface, instance);
  }

  void Move() {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (!is_fixed_[i]) {
        const Field& field = *interface_.fields[i];
        source_.Move(values_[i], field.Type());
        service_->Update(i, field.Encode(values_[i]));
      }
    }
  }

  /// Gives the field a recorded value, where it is of this interface.
  void Play(const Field& field, const std::vector<unsigned char>& payload) {
    const auto found = std::find_if(interface_.fields.begin(), interface_.fields.end(),
                                    [&field](const auto& own) { return own.get() == &field; });
    if (found != interface_.fields.end()) {
      service_->Update(static_cast<std::size_t>(found - interface_.fields.begin()), payload);
    }
  }

  void Stop() {
    service_->StopOffer();
    const SimulatedService::Counters counters = service_->GetCounters();
    std::cerr << interface_.name << ": " << counters.gets << " values read, " << counters.sets << " set, "
              << counters.notifications << " notified" << std::endl;
  }

 private:
  const Interface& interface_;
  ValueSource& source_;
  std::shared_ptr<SimulatedService> service_;
  std::vector<Json> values_;
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
      nextMove += period;
    }
    replay.PlayUntil(now, [&simulations](const Field& field, const std::vector<unsigned char>& payload) {
      for (Simulation& simulation : simulations) {
        simulation.Play(field, payload);
      }
    });
    loop.RunUntil(std::min(nextMove, replay.Next()), [] { return false; });
  }
}

void Simulate(const SimulateOptions& options) {
  std::vector<const Interface*> interfaces;
  std::vector<FieldAddress> fields;
  for (const std::string& name : options.interfaces) {
    const Interface& interface = FindInterface(name);
    if (interface.IsProvided()) {
      throw CommandError(Status::kUsage, name + " is offered by the application, not by the vehicle: use tarn7 offer " +
                                             name + " --values FILE");
    }
    if (std::find(interfaces.begin(), interfaces.end(), &interface) == interfaces.end()) {
      interfaces.push_back(&interface);
      const auto own = FindAddresses(name);
      fields.insert(fields.end(), own.begin(), own.end());
    }
  }
  RequireOneReaderOfStandardInput({{"--values", options.values_file == "-"}, {"--replay", options.replay.file == "-"}});
  Replay replay = options.replay.Read(fields);
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

}  // namespace

void AddSimulateCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("simulate", "Offer interfaces as a vehicle would, until Ctrl-C");
  const auto options = std::make_shared<SimulateOptions>();
  command->add_option("INTERFACE", options->interfaces, "What to offer")->required();
  AddInstanceOption(*command, *options);
  command->add_option("--period", options->period, "Time between two values; 1000 if not given")
      ->type_name("MS")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
  command
      ->add_option("--values", options->values_file,
                   "JSON file of values that stay, by field; other fields move. - reads standard input")
      ->type_name("FILE");
  AddReplayOptions(*command, options->replay);
  command->footer(
      "Example:\n"
      "  echo '{\"notifications\":[{\"member0\":42}]}' | tarn7 simulate energysystem --values -\n"
      "  tarn7 watch energysystem > drive.jsonl; tarn7 simulate energysystem --replay drive.jsonl --speed 10");
  command->callback([&chosen, options] { chosen = [options](Output&) { Simulate(*options); }; });
}

}  // namespace tarn7::tool
