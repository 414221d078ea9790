#include "tools/tarn7/front/command_line.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>

#include <CLI/CLI.hpp>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/front/candidates.h"

namespace tarn7::tool {

namespace {

constexpr const char* kExitStatuses =
    "Data goes to standard output, everything else to standard error.\n"
    "Exit status: 0 done, 1 wrong usage, 2 service or answer not there in time,\n"
    "             3 the call failed, 4 unreadable or wrong values";
constexpr const char* kModel = "--model";
constexpr const char* kField = "The field, as INTERFACE/FIELD";
constexpr const char* kTargets = "INTERFACE/FIELD, or INTERFACE for all of its fields; any mix of them";

template <typename Options>
struct Added {
  CLI::App* command;
  Options& options;
};

/// A command that runs `run` with what its options left in the structure.
template <typename Options>
Added<Options> AddCommand(CLI::App& tool, Request& request, const char* name, const char* description,
                          void (*run)(const Context&, const Options&)) {
  const auto options = std::make_shared<Options>();
  auto* const command = tool.add_subcommand(name, description);
  command->callback([&request, options, run] {
    request.command = [options, run](const Context& context) { run(context, *options); };
  });
  return {command, *options};
}

CLI::Option* AddInstance(CLI::App& command, ServiceOptions& options) {
  constexpr int kLastInstance = 0xFFFE;  // 0xFFFF stands for any
  return command.add_option("--instance", options.instance, "Instance id, decimal or 0x; 1 if not given")
      ->type_name("ID")
      ->check(CLI::Range(1, kLastInstance).description(""));
}

CLI::Option* AddTimeout(CLI::App& command, ServiceOptions& options, const std::string& description) {
  return command.add_option("--timeout", options.timeout, description)->type_name("MS");
}

void AddReplay(CLI::App& command, ReplayOptions& options) {
  constexpr double kSlowest = 0.001;
  constexpr double kFastest = 1e6;
  auto* const replay =
      command
          .add_option("--replay", options.file,
                      "Recording to play back with its timing, as tarn7 watch writes it; - reads standard input")
          ->type_name("FILE");
  command.add_option("--speed", options.speed, "How many times as fast the recording is played; 1 if not given")
      ->type_name("X")
      ->check(CLI::Range(kSlowest, kFastest).description(""))
      ->needs(replay);
}

void AddList(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "list", "Show interfaces, fields, identifiers and record members", &List);
  command->add_option("TARGET", options.targets, kTargets);
  command->add_flag("--json", options.as_json, "As JSON instead of a table");
  command->footer("Example:\n  tarn7 list psd2/laneLayer");
}

void AddFind(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "find", "Show which instances of the services are offered now", &Find);
  command->add_option("INTERFACE", options.interfaces, "What to look for; all interfaces if not given");
  AddInstance(*command, options)
      ->description("Only this instance, and no longer than until it is found")
      ->each([&given = options.has_instance](const std::string&) { given = true; });
  auto* const timeout = AddTimeout(*command, options, "How long to look; 2000 if not given");
  command
      ->add_flag("--follow", options.follow,
                 "Go on until Ctrl-C, and show what comes and goes, of each instance a change a second")
      ->excludes(timeout);
  command->add_flag("--json", options.as_json, "A JSON object on each line");
  command->footer("Example:\n  tarn7 find energysystem --instance 1 --timeout 10000");
}

void AddGet(CLI::App& tool, Request& request) {
  const auto& [command, options] = AddCommand(tool, request, "get", "Read a field and print its value", &Get);
  command->add_option("FIELD", options.address, kField)->required();
  AddInstance(*command, options);
  AddTimeout(*command, options, "How long to wait for service and answer; 2000 if not given");
  command->add_flag("--hex", options.hex, "Print the bytes of the payload, as they came, instead of the value");
  command->footer("Example:\n  tarn7 get energysystem/notifications --timeout 5000");
}

void AddSet(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "set", "Write a field and print what the service reports back", &Set);
  command->add_option("FIELD", options.address, kField)->required();
  command->add_option("JSON", options.value, "The new value, as `get` prints it; - reads it from standard input")
      ->required();
  AddInstance(*command, options);
  AddTimeout(*command, options, "How long to wait for service and answer; 2000 if not given");
  command->footer("Example:\n  tarn7 set chargetimemanager/chargeTimeCalculations '[{\"member0\":42}]'");
}

void AddDecode(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "decode", "Print the value that the bytes of a payload are", &Decode);
  command->add_option("FIELD", options.address, kField)->required();
  command->add_option("HEX", options.digits,
                      "The payload, as `get --hex` prints it; white space is passed over. - or nothing reads it from "
                      "standard input");
  command->footer("Example:\n  tarn7 decode energysystem/notifications 0000000a 00000006 2000 0000002a");
}

void AddEncode(CLI::App& tool, Request& request) {
  const auto& [command, options] = AddCommand<EncodeOptions>(
      tool, request, "encode", "Print the bytes of the payload that carries a value", &Encode);
  command->add_option("FIELD", options.address, kField)->required();
  command->add_option("JSON", options.value,
                      "The value, as `get` prints it; - or nothing reads it from standard input");
  command->footer("Example:\n  tarn7 encode energysystem/notifications '[{\"member0\":42}]'");
}

void AddWatch(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "watch",
                 "Follow fields: in a live table on a terminal, else with a JSON line for each sample", &Watch);
  command->add_option("TARGET", options.targets, kTargets)->required();
  AddInstance(*command, options);
  command->add_option("--count", options.count, "End after N samples; without it Ctrl-C ends the command")
      ->type_name("N")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
  AddTimeout(*command, options,
             "How long to wait for the services, and for the N samples of --count; no limit if not given")
      ->each([&given = options.has_timeout](const std::string&) { given = true; });
  auto* const asLines = command->add_flag("--json", options.as_lines, "JSON lines on a terminal, too");
  command->add_flag("--summary", options.as_summary, "Say only how large each sample is, and what it holds")
      ->excludes(asLines);
  command->footer("Example:\n  tarn7 watch energysystem/notifications routebasedenergycontents --count 10");
}

void AddSimulate(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "simulate", "Offer interfaces as a vehicle would, until Ctrl-C", &Simulate);
  command->add_option("INTERFACE", options.interfaces, "What to offer")->required();
  AddInstance(*command, options);
  command->add_option("--period", options.period, "Time between two values; 1000 if not given")
      ->type_name("MS")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
  command
      ->add_option("--values", options.values_file,
                   "JSON file of values that stay, by field; other fields move. - reads standard input")
      ->type_name("FILE");
  AddReplay(*command, options.replay);
  command->footer(
      "Example:\n"
      "  echo '{\"notifications\":[{\"member0\":42}]}' | tarn7 simulate energysystem --values -\n"
      "  tarn7 watch energysystem > drive.jsonl; tarn7 simulate energysystem --replay drive.jsonl --speed 10");
}

void AddOffer(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "offer", "Offer an interface as an application would, until Ctrl-C", &OfferInterface);
  command->add_option("INTERFACE", options.interface, "What to offer")->required();
  AddInstance(*command, options);
  command->add_option("--values", options.values_file, "JSON file with a value for each field; - reads standard input")
      ->type_name("FILE");
  command->add_flag("--follow", options.follow, "Read further values from standard input, a JSON object on each line");
  AddReplay(*command, options.replay);
  command->footer(
      "Example:\n"
      "  echo '{\"destinations\":[{\"member0\":42}]}' |\n"
      "    tarn7 offer routebasedenergycontents --values values.json --follow\n"
      "  tarn7 offer routebasedenergycontents --replay drive.jsonl");
}

void AddWireshark(CLI::App& tool, Request& request) {
  const auto& [command, options] =
      AddCommand(tool, request, "wireshark", "Write a Wireshark profile that shows all fields and members by name",
                 &WriteWiresharkProfile);
  command->add_option("DIR", options.folder, "The profile's folder; is made where it is missing")->required();
  command->add_flag("--force", options.force, "Replace files that this command has not written");
  command->footer(
      "Example:\n"
      "  tarn7 wireshark ~/.config/wireshark/profiles/tarn7\n"
      "  tshark -C tarn7 -i lo -V -Y someip.payload.energysystem.notifications.member0");
}

void AddDoctor(CLI::App& tool, Request& request) {
  const auto& [command, options] = AddCommand(
      tool, request, "doctor", "Check what usually goes wrong on this machine, and say what to do about it", &Doctor);
  AddTimeout(*command, options, "How long to look for the services; 2000 if not given");
  command->add_flag("--json", options.as_json, "As JSON instead of a line for each check");
  command->footer(
      "Example:\n  VSOMEIP_CONFIGURATION=vehicle.json tarn7 doctor\nExit status: 3 where there is a problem");
}

/// Adds a command that tells the shell what may come next. Its words: which of those behind it is being typed, counted
/// from 0, then the command line as it stands.
void AddComplete(CLI::App& tool, Request& request) {
  auto* const command = tool.add_subcommand("complete", "Print what may come next on a command line, for the shell");
  command->group("");  // not shown
  command->prefix_command();
  command->fallthrough(false);
  command->callback([&request, &tool, command] {
    std::vector<std::string> words = command->remaining();
    std::size_t typed = 0;
    const std::string number = words.empty() ? "" : words.front();
    if (std::from_chars(number.data(), number.data() + number.size(), typed).ec != std::errc()) {
      throw CLI::ValidationError("complete is for the shell: it needs a number and a command line");
    }
    words.erase(words.begin());
    const std::string begun = typed < words.size() ? words[typed] : "";
    words.resize(std::min(typed, words.size()));
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
      if (words[i] == kModel) {
        request.model_files.push_back(words[i + 1]);
      }
    }
    request.command = [&tool, words, begun](const Context& context) {
      for (const std::string& candidate : Candidates(tool, context.interfaces, words, begun)) {
        context.output.WriteLine(candidate);
      }
    };
  });
}

}  // namespace

struct CommandLine::Syntax {
  CLI::App tool{"Read, write, follow, offer and simulate the fields of the vehicle's services over SOME/IP"};
  Request request;
};

CommandLine::CommandLine() : syntax_(std::make_unique<Syntax>()) {
  CLI::App& tool = syntax_->tool;
  Request& request = syntax_->request;
  tool.name("tarn7");
  tool.set_version_flag("--version",
                        "tarn7 " + std::string(GetBuildInfo().version) + ", " + GetBuildInfo().StackName());
  tool.add_option(
          kModel, request.model_files,
          "Model of a further interface, as those in interfaces/model; any number of them, before or behind any "
          "command")
      ->type_name("FILE")
      ->allow_extra_args(false);
  tool.require_subcommand(1);
  tool.fallthrough();  // --model may follow the command
  tool.footer(kExitStatuses);
  for (const auto add : {&AddList, &AddFind, &AddGet, &AddSet, &AddDecode, &AddEncode, &AddWatch, &AddSimulate,
                         &AddOffer, &AddWireshark, &AddDoctor, &AddComplete}) {
    add(tool, request);
  }
}

CommandLine::~CommandLine() = default;

std::variant<Request, Status> CommandLine::Read(int argc, const char* const* argv) {
  try {
    syntax_->tool.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return syntax_->tool.exit(error) == 0 ? Status::kDone : Status::kUsage;
  }
  return syntax_->request;
}

}  // namespace tarn7::tool
