#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/field.h"
#include "tools/tarn7/output.h"
#include "tools/tarn7/recording/replay.h"

namespace tarn7::tool {

/// What a command does once the command line is understood. Ends by returning, or by throwing CommandError.
using Command = std::function<void(Output&)>;

// Each adds one command to the tool. When the command line calls for it, `chosen` becomes what it does.
void AddListCommand(CLI::App& tool, Command& chosen);
void AddFindCommand(CLI::App& tool, Command& chosen);
void AddGetCommand(CLI::App& tool, Command& chosen);
void AddSetCommand(CLI::App& tool, Command& chosen);
void AddDecodeCommand(CLI::App& tool, Command& chosen);
void AddEncodeCommand(CLI::App& tool, Command& chosen);
void AddWatchCommand(CLI::App& tool, Command& chosen);
void AddSimulateCommand(CLI::App& tool, Command& chosen);
void AddOfferCommand(CLI::App& tool, Command& chosen);
void AddWiresharkCommand(CLI::App& tool, Command& chosen);
void AddDoctorCommand(CLI::App& tool, Command& chosen);
void AddCompleteCommand(CLI::App& tool, Command& chosen);

/// What the commands have in common, with one meaning everywhere.
struct ServiceOptions {
  std::uint16_t instance = 1;
  std::uint32_t timeout = 2000;  // in milliseconds

  Loop::TimePoint Deadline() const { return Loop::Clock::now() + std::chrono::milliseconds(timeout); }
};

CLI::Option* AddInstanceOption(CLI::App& command, ServiceOptions& options);
/// Takes the default from `options`.
CLI::Option* AddTimeoutOption(CLI::App& command, ServiceOptions& options, const std::string& description);

/// A recording to play back.
struct ReplayOptions {
  std::string file;
  double speed = 1;

  bool IsGiven() const noexcept { return !file.empty(); }
  /// Plays nothing where none is given.
  Replay Read(const std::vector<FieldAddress>& fields) const;
};

void AddReplayOptions(CLI::App& command, ReplayOptions& options);

/// Throws CommandError (kUsage) where more than one of the options (its name, and whether it does) would read standard
/// input.
void RequireOneReaderOfStandardInput(std::initializer_list<std::pair<const char*, bool>> options);

/// Says on standard error that the instance is offered now.
void ReportOffer(const Interface& interface, std::uint16_t instance);

}  // namespace tarn7::tool
