#include <algorithm>
#include <iostream>
#include <memory>
#include <set>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/stack/instance_search.h"

namespace tarn7::tool {

namespace {

struct FindOptions : ServiceOptions {
  std::vector<std::string> interfaces;
  bool has_instance = false;
  bool follow = false;
  bool as_json = false;
};

/// Prints the instances that are offered as they come and go.
class Finder {
 public:
  Finder(Output& output, const FindOptions& options) : output_(output), options_(options) {
    for (const std::string& name : options.interfaces) {
      const Interface& interface = FindInterface(name);
      if (std::find(interfaces_.begin(), interfaces_.end(), &interface) == interfaces_.end()) {
        interfaces_.push_back(&interface);
      }
    }
    if (interfaces_.empty()) {
      for (const Interface& interface : Interfaces()) {
        interfaces_.push_back(&interface);
      }
    }
  }

  /// Throws Interrupted, or CommandError (kUnavailable) when what was asked for is not there in time.
  void Run() {
    const Loop::TimePoint deadline = options_.follow ? Loop::kForever : options_.Deadline();
    const InstanceSearch search(loop_, interfaces_, [this](const InstanceChange& change) {
      if (!options_.has_instance || change.instance == options_.instance) {
        Write(change);
      }
    });
    // More than one instance of an interface may come at any time: only one that was asked for can be waited for.
    const auto isDone = [this] { return options_.has_instance && seen_.size() == interfaces_.size(); };
    loop_.RunUntil(deadline, [this, &isDone] { return !options_.follow && isDone(); });
    RequireSeen();
  }

  std::size_t Count() const noexcept { return count_; }

 private:
  void Write(const InstanceChange& change) {
    const Interface& interface = change.interface;
    if (change.found) {
      seen_.insert(&interface);
      ++count_;
    }
    if (options_.as_json) {
      Json line = {{"interface", interface.name}, {"instance", change.instance}, {"found", change.found}};
      if (change.found) {
        line["rightVersion"] = change.has_right_version;
      }
      output_.WriteLine(ToText(line));
      return;
    }
    std::string line = interface.name + ", instance " + std::to_string(change.instance);
    line += change.found ? ": found" : ": gone";
    if (change.found && !change.has_right_version) {
      line += ", but not in version " + std::to_string(static_cast<int>(interface.major_version));
    }
    output_.WriteLine(std::move(line));
  }

  /// Every interface that was named, or else any.
  void RequireSeen() const {
    if (options_.interfaces.empty() && seen_.empty()) {
      throw CommandError(Status::kUnavailable, "none of the services is offered");
    }
    for (const Interface* interface : interfaces_) {
      if (!options_.interfaces.empty() && seen_.count(interface) == 0) {
        throw CommandError(Status::kUnavailable, interface->name + " is not offered");
      }
    }
  }

  Output& output_;
  const FindOptions& options_;
  std::vector<const Interface*> interfaces_;
  std::set<const Interface*> seen_;
  std::size_t count_ = 0;
  Loop loop_;
};

void Find(Output& output, const FindOptions& options) {
  Finder finder(output, options);
  try {
    finder.Run();
  } catch (const Interrupted&) {
    if (!options.follow) {
      throw;
    }
  } catch (const ReaderGone&) {
  }
  if (options.follow) {
    std::cerr << finder.Count() << " instances found" << std::endl;
  }
}

}  // namespace

void AddFindCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("find", "Show which instances of the services are offered now");
  const auto options = std::make_shared<FindOptions>();
  command->add_option("INTERFACE", options->interfaces, "What to look for; all interfaces if not given");
  auto* const instance =
      AddInstanceOption(*command, *options)->description("Only this instance, and no longer than until it is found");
  auto* const timeout = AddTimeoutOption(*command, *options, "How long to look; 2000 if not given");
  command->add_flag("--follow", options->follow, "Go on until Ctrl-C, and show what comes and goes")->excludes(timeout);
  command->add_flag("--json", options->as_json, "A JSON object on each line");
  command->footer("Example:\n  tarn7 find energysystem --instance 1 --timeout 10000");
  command->callback([&chosen, options, instance] {
    options->has_instance = instance->count() > 0;
    chosen = [options](Output& output) { Find(output, *options); };
  });
}

}  // namespace tarn7::tool
