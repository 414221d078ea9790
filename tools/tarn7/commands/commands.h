#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/output.h"

namespace tarn7::tool {

/// What every command has.
struct Context {
  Output& output;
  const InterfaceTable& interfaces;
};

// What the command line says, in a structure for each command. The defaults are those of the command line.

/// What the commands have in common, with one meaning everywhere.
struct ServiceOptions {
  std::uint16_t instance = 1;
  std::uint32_t timeout = 2000;  // in milliseconds

  Loop::TimePoint Deadline() const { return Loop::Clock::now() + std::chrono::milliseconds(timeout); }
};

/// A recording to play back.
struct ReplayOptions {
  std::string file;  // empty: none
  double speed = 1;
};

struct ListOptions {
  std::vector<std::string> targets;
  bool as_json = false;
};

struct FindOptions : ServiceOptions {
  std::vector<std::string> interfaces;
  bool has_instance = false;
  bool follow = false;
  bool as_json = false;
};

struct GetOptions : ServiceOptions {
  std::string address;
  bool hex = false;
};

struct SetOptions : ServiceOptions {
  std::string address;
  std::string value;
};

struct DecodeOptions {
  std::string address;
  std::vector<std::string> digits = {"-"};
};

struct EncodeOptions {
  std::string address;
  std::string value = "-";
};

struct WatchOptions : ServiceOptions {
  std::vector<std::string> targets;
  std::uint64_t count = 0;  // 0: no end
  bool has_timeout = false;
  bool as_lines = false;
  bool as_summary = false;
};

struct SimulateOptions : ServiceOptions {
  std::vector<std::string> interfaces;
  std::uint32_t period = 1000;  // in milliseconds
  std::string values_file;
  ReplayOptions replay;
};

struct OfferOptions : ServiceOptions {
  std::string interface;
  std::string values_file;
  bool follow = false;
  ReplayOptions replay;
};

struct WiresharkOptions {
  std::string folder;
  bool force = false;
};

struct DoctorOptions : ServiceOptions {
  bool as_json = false;
};

// The commands. Each ends by returning, or by throwing CommandError.
void List(const Context& context, const ListOptions& options);
void Find(const Context& context, const FindOptions& options);
void Get(const Context& context, const GetOptions& options);
void Set(const Context& context, const SetOptions& options);
void Decode(const Context& context, const DecodeOptions& options);
void Encode(const Context& context, const EncodeOptions& options);
void Watch(const Context& context, const WatchOptions& options);
void Simulate(const Context& context, const SimulateOptions& options);
void OfferInterface(const Context& context, const OfferOptions& options);
void WriteWiresharkProfile(const Context& context, const WiresharkOptions& options);
void Doctor(const Context& context, const DoctorOptions& options);

}  // namespace tarn7::tool
