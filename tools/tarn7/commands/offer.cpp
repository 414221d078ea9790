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
};

/// A provided interface with the values that were given to it.
class Offer {
 public:
  Offer(const Interface& interface, std::uint16_t instance)
      : interface_(interface), fields_(FindAddresses(interface.name)), service_(interface.make_skeleton(instance)) {}

  void ReadFile(const std::string& path) { Update(ReadFieldValuesFile(path, fields_)); }

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
  void Update(const FieldValues& values) {
    for (std::size_t i = 0; i < interface_.fields.size(); ++i) {
      const auto found = values.find(interface_.fields[i].get());
      if (found != values.end()) {
        service_->Update(i, found->second);
        ++count_;
      }
    }
  }

  const Interface& interface_;
  const std::vector<FieldAddress> fields_;
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
  if (options.follow && options.values_file == "-") {
    throw CommandError(Status::kUsage, "--values - and --follow would both read standard input");
  }
  Loop loop;
  Offer offer(interface, options.instance);
  offer.ReadFile(options.values_file);
  offer.Start();
  ReportOffer(interface, options.instance);
  try {
    std::optional<LineReader> updates;
    if (options.follow) {
      updates.emplace(STDIN_FILENO,
                      [&offer](std::string_view line, std::size_t number) { offer.ReadLine(line, number); });
    }
    loop.RunUntil(Loop::kForever, [] { return false; });
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
      ->type_name("FILE")
      ->required();
  command->add_flag("--follow", options->follow, "Read further values from standard input, a JSON object on each line");
  command->footer(
      "Example:\n"
      "  echo '{\"destinations\":[{\"member0\":42}]}' |\n"
      "    tarn7 offer routebasedenergycontents --values values.json --follow");
  command->callback([&chosen, options] { chosen = [options](Output&) { RunOffer(*options); }; });
}

}  // namespace tarn7::tool
