#include <algorithm>
#include <iostream>
#include <set>

#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/stack/instance_search.h"
#include "tools/tarn7/values/counted.h"

namespace tarn7::tool {

namespace {

/// Prints the instances that are offered as they come and go.
class Finder {
 public:
  Finder(const Context& context, const FindOptions& options) : output_(context.output), options_(options) {
    for (const std::string& name : options.interfaces) {
      const Interface& interface = context.interfaces.FindInterface(name);
      if (std::find(interfaces_.begin(), interfaces_.end(), &interface) == interfaces_.end()) {
        interfaces_.push_back(&interface);
      }
    }
    if (interfaces_.empty()) {
      for (const Interface& interface : context.interfaces.All()) {
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
      const auto text = [](bool value) { return value ? "true" : "false"; };
      std::string line = R"({"interface":")" + interface.name + R"(","instance":)" + std::to_string(change.instance);
      line += std::string(R"(,"found":)") + text(change.found);
      line += change.found ? std::string(R"(,"rightVersion":)") + text(change.has_right_version) : "";
      output_.WriteLine(line + '}');
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

}  // namespace

void Find(const Context& context, const FindOptions& options) {
  Finder finder(context, options);
  try {
    finder.Run();
  } catch (const Interrupted&) {
    if (!options.follow) {
      throw;
    }
  } catch (const ReaderGone&) {
  }
  if (options.follow) {
    std::cerr << Counted(finder.Count(), "instance") << " found" << std::endl;
  }
}

}  // namespace tarn7::tool
