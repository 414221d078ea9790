#include <exception>
#include <iostream>

#include "tools/tarn7/build_info.h"
#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"

namespace {

using namespace tarn7::tool;

constexpr const char* kExitStatuses =
    "Data goes to standard output, everything else to standard error.\n"
    "Exit status: 0 done, 1 wrong usage, 2 service or answer not there in time,\n"
    "             3 the call failed, 4 unreadable or wrong values";

int Fail(Status status, const std::string& text) {
  std::cerr << "tarn7: " << text << std::endl;
  return static_cast<int>(status);
}

int Run(const Command& command) {
  try {
    Output output;
    command(output);
    return static_cast<int>(Status::kDone);
  } catch (const CommandError& error) {
    return Fail(error.GetStatus(), error.what());
  } catch (const Interrupted& interrupted) {
    constexpr int kEndedBySignal = 128;  // as a shell reports it
    return kEndedBySignal + interrupted.signal;
  } catch (const ReaderGone&) {
    return static_cast<int>(Status::kDone);
  } catch (const std::exception& error) {
    return Fail(Status::kCallFailed, error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App tool("Read, write, follow, offer and simulate the fields of the vehicle's services over SOME/IP");
  tool.name("tarn7");
  tool.set_version_flag("--version",
                        "tarn7 " + std::string(GetBuildInfo().version) + ", " + GetBuildInfo().StackName());
  tool.require_subcommand(1);
  tool.footer(kExitStatuses);
  Command chosen;
  AddListCommand(tool, chosen);
  AddFindCommand(tool, chosen);
  AddGetCommand(tool, chosen);
  AddSetCommand(tool, chosen);
  AddDecodeCommand(tool, chosen);
  AddEncodeCommand(tool, chosen);
  AddWatchCommand(tool, chosen);
  AddSimulateCommand(tool, chosen);
  AddOfferCommand(tool, chosen);
  AddWiresharkCommand(tool, chosen);
  AddDoctorCommand(tool, chosen);
  AddCompleteCommand(tool, chosen);
  try {
    tool.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return static_cast<int>(tool.exit(error) == 0 ? Status::kDone : Status::kUsage);
  }
  return Run(chosen);
}
