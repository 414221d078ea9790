#include <algorithm>
#include <atomic>
#include <chrono>
#include <iostream>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <set>

#include "tools/tarn7/client/service_client.h"
#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

struct WatchOptions : ServiceOptions {
  std::vector<std::string> targets;
  std::uint64_t count = 0;  // 0: no end
  bool has_timeout = false;
};

/// Follows fields and writes a line for each sample.
class Watcher {
 public:
  Watcher(Output& output, const WatchOptions& options) : output_(output), options_(options) {
    for (const std::string& target : options.targets) {
      for (const FieldAddress& address : FindAddresses(target)) {
        if (followed_.insert(address.field).second) {
          Follow(address);
        }
      }
    }
  }

  /// Throws Interrupted, or CommandError (kUnavailable) when services or samples are not there in time.
  void Run() {
    const Loop::TimePoint deadline = options_.has_timeout ? options_.Deadline() : Loop::kForever;
    for (const auto& [interface, service] : services_) {
      if (!loop_.RunUntil(deadline, [this, &service = *service] { return service.IsFound() || IsDone(); })) {
        service->Wait(deadline);
      }
    }
    if (!loop_.RunUntil(options_.count == 0 ? Loop::kForever : deadline, [this] { return IsDone(); })) {
      throw CommandError(Status::kUnavailable, "only " + std::to_string(samples_) + " of " +
                                                   std::to_string(options_.count) + " samples came in time");
    }
  }

  std::uint64_t SampleCount() const noexcept { return samples_; }

 private:
  bool IsDone() const noexcept { return options_.count != 0 && samples_ >= options_.count; }

  void Follow(const FieldAddress& address) {
    FieldClient& field = *fields_.emplace_back(ServiceOf(*address.interface).Connect(*address.field));
    // Posted once, however many samples arrive until it runs: the samples wait in the bounded cache, not in the loop.
    const auto posted = std::make_shared<std::atomic<bool>>(false);
    field.Subscribe([this, &field, address, posted] {
      if (!posted->exchange(true)) {
        loop_.Post([this, &field, address, posted] {
          posted->store(false);
          for (const Json& value : field.TakeSamples()) {
            Write(address, value);
          }
        });
      }
    });
  }

  ServiceClient& ServiceOf(const Interface& interface) {
    auto& service = services_[&interface];
    if (service == nullptr) {
      service = MakeServiceClient(loop_, interface, options_.instance, [this, &interface](bool found) {
        // In one piece, because the stack may log at the same time.
        std::cerr << interface.name + ", instance " + std::to_string(options_.instance) +
                         (found ? ": found\n" : ": gone\n")
                  << std::flush;
      });
    }
    return *service;
  }

  void Write(const FieldAddress& address, const Json& value) {
    if (IsDone()) {
      return;
    }
    const std::chrono::duration<double> time =
        std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now()).time_since_epoch();
    output_.WriteLine(ToText({{"time", time.count()},
                              {"interface", address.interface->name},
                              {"field", address.field->Name()},
                              {"value", value}}));
    ++samples_;
  }

  Output& output_;
  const WatchOptions& options_;
  std::uint64_t samples_ = 0;
  std::set<const Field*> followed_;
  // The order matters: the fields need their service, whose handlers use the loop.
  Loop loop_;
  std::map<const Interface*, std::unique_ptr<ServiceClient>> services_;
  std::list<std::unique_ptr<FieldClient>> fields_;
};

void Watch(Output& output, const WatchOptions& options) {
  Watcher watcher(output, options);
  const auto report = [&watcher] { std::cerr << watcher.SampleCount() << " samples" << std::endl; };
  try {
    watcher.Run();
  } catch (const Interrupted&) {  // the usual way to end it
  } catch (const ReaderGone&) {
  }
  report();
}

}  // namespace

void AddWatchCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("watch", "Follow fields and print a JSON line for each sample");
  const auto options = std::make_shared<WatchOptions>();
  command->add_option("TARGET", options->targets, "INTERFACE/FIELD, or INTERFACE for all of its fields")->required();
  AddInstanceOption(*command, *options);
  command->add_option("--count", options->count, "End after N samples; without it Ctrl-C ends the command")
      ->type_name("N")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
  auto* const timeout = AddTimeoutOption(
      *command, *options, "How long to wait for the services, and for the N samples of --count; no limit if not given");
  command->footer("Example:\n  tarn7 watch energysystem/notifications energysystem/lowVoltageBatteries --count 10");
  command->callback([&chosen, options, timeout] {
    options->has_timeout = timeout->count() > 0;
    chosen = [options](Output& output) { Watch(output, *options); };
  });
}

}  // namespace tarn7::tool
