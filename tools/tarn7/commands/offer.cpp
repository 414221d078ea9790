#include <atomic>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <unistd.h>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/line_reader.h"
#include "tools/tarn7/model/field_values.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

struct OfferOptions : ServiceOptions {
  std::string interface;
  std::string values_file;
  bool follow = false;
  ReplayOptions replay;
};

/// A provided interface with the values that were given to it.
class Offer {
 public:
  Offer(const Interface& interface, const std::vector<FieldAddress>& fields, std::uint16_t instance)
      : interface_(interface), fields_(fields), service_(interface.make_skeleton(instance)) {}

  void Update(const FieldValues& values) {
    for (std::size_t i = 0; i < interface_.fields.size(); ++i) {
      const auto found = values.find(interface_.fields[i].get());
      if (found != values.end()) {
        service_->Update(i, found->second);
        ++count_;
      }
    }
  }

  /// A wrong line is reported, and changes nothing. From any thread.
  void ReadLine(std::string_view line, std::size_t number) {
    const std::string source = "line " + std::to_string(number);
    try {
      Update(ReadFieldValues(ParseJson(line, source), source, fields_));
    } catch (const std::exception& error) {
      std::cerr << std::string("passed over: ") + error.what() + '\n' << std::flush;
    }
  }

  void Start() { service_->Offer(); }

  void Stop() {
    service_.reset();
    std::cerr << interface_.name << ": " << count_ << " values offered" << std::endl;
  }

 private:
  const Interface& interface_;
  const std::vector<FieldAddress>& fields_;
  std::unique_ptr<OfferedService> service_;
  std::atomic<std::uint64_t> count_{0};
};

void RunOffer(const OfferOptions& options) {
  const Interface& interface = FindInterface(options.interface);
  if (!interface.IsProvided()) {
    throw CommandError(
        Status::kUsage,
        interface.name + " is offered by the vehicle, not by the application: use tarn7 simulate " + interface.name);
  }
  RequireOneReaderOfStandardInput({{"--values", options.values_file == "-"},
                                   {"--follow", options.follow},
                                   {"--replay", options.replay.file == "-"}});
  if (options.values_file.empty() && !options.replay.IsGiven()) {
    throw CommandError(Status::kUsage, "the fields need values: --values FILE, --replay FILE, or both");
  }
  const std::vector<FieldAddress> fields = FindAddresses(interface.name);
  Replay replay = options.replay.Read(fields);
  FieldValues values = replay.FirstValues();
  if (!options.values_file.empty()) {
    // A recorded value stays the field's first one.
    values.merge(ReadFieldValuesFile(options.values_file, fields));
  }
  Loop loop;  // not before everything is read: from here on Ctrl-C ends nothing but the loop
  Offer offer(interface, fields, options.instance);
  offer.Update(values);
  offer.Start();
  ReportOffer(interface, options.instance);
  try {
    std::optional<LineReader> updates;
    if (options.follow) {
      updates.emplace(STDIN_FILENO,
                      [&offer](std::string_view line, std::size_t number) { offer.ReadLine(line, number); });
    }
    replay.Start(Loop::Clock::now());
    for (;;) {
      loop.RunUntil(replay.Next(), [] { return false; });
      replay.PlayUntil(Loop::Clock::now(), [&offer](const Field& field, const std::vector<unsigned char>& payload) {
        offer.Update({{&field, field.Decode(payload.data(), payload.size())}});
      });
    }
  } catch (const Interrupted&) {  // the usual way to end it
  }
  offer.Stop();
}

}  // namespace

void AddOfferCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("offer", "Offer an interface as an application would, until Ctrl-C");
  const auto options = std::make_shared<OfferOptions>();
  command->add_option("INTERFACE", options->interface, "What to offer")->required();
  AddInstanceOption(*command, *options);
  command->add_option("--values", options->values_file, "JSON file with a value for each field; - reads standard input")
      ->type_name("FILE");
  command->add_flag("--follow", options->follow, "Read further values from standard input, a JSON object on each line");
  AddReplayOptions(*command, options->replay);
  command->footer(
      "Example:\n"
      "  echo '{\"destinations\":[{\"member0\":42}]}' |\n"
      "    tarn7 offer routebasedenergycontents --values values.json --follow\n"
      "  tarn7 offer routebasedenergycontents --replay drive.jsonl");
  command->callback([&chosen, options] { chosen = [options](Output&) { RunOffer(*options); }; });
}

}  // namespace tarn7::tool
