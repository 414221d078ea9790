#include <algorithm>
#include <atomic>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

#include "tools/tarn7/commands/common.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/recording/recording.h"
#include "tools/tarn7/terminal/live_table.h"
#include "tools/tarn7/terminal/terminal.h"
#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

namespace {

constexpr std::chrono::milliseconds kRedrawPeriod{250};

/// A line that says how large a sample is and what it holds.
std::string SummaryLine(const FieldAddress& address, const Payload& value) {
  constexpr int kBytesWidth = 8;
  std::ostringstream line;
  line << std::setw(kBytesWidth) << value.size() << " bytes  " << address.ToString() << ": "
       << Outline(*address.field->type, value);
  return line.str();
}

/// Follows fields and shows their samples: in a table where standard output is a terminal, else as a line for each.
class Watcher {
 public:
  Watcher(const Context& context, const WatchOptions& options) : output_(context.output), options_(options) {
    for (const std::string& target : options.targets) {
      for (const FieldAddress& address : context.interfaces.FindAddresses(target)) {
        if (followed_.insert(address.field).second) {
          Follow(address);
        }
      }
    }
    if (output_.IsTerminal() && !options.as_lines && !options.as_summary) {
      terminal_.emplace(output_);
    } else {
      std::cerr << "following " << Counted(fields_.size(), "field") << std::endl;
    }
  }

  /// Throws Interrupted, or CommandError (kUnavailable) when services or samples are not there in time.
  void Run() {
    const Loop::TimePoint deadline = options_.has_timeout ? options_.Deadline() : Loop::kForever;
    for (const auto& [interface, service] : services_) {
      if (!RunUntil(deadline, [this, &service = *service] { return service.IsFound() || IsDone(); })) {
        service->Wait(deadline);
      }
    }
    if (!RunUntil(options_.count == 0 ? Loop::kForever : deadline, [this] { return IsDone(); })) {
      throw CommandError(Status::kUnavailable, "only " + std::to_string(samples_) + " of " +
                                                   std::to_string(options_.count) + " samples came in time");
    }
  }

  /// Says on standard error what was seen. Gives the terminal back.
  void Finish() {
    terminal_.reset();
    std::uint64_t dropped = 0;
    for (const Followed& followed : fields_) {
      dropped += followed.client->CountDropped();
    }
    std::cerr << Counted(samples_, "sample");
    if (dropped > 0) {
      std::cerr << ", " << dropped << " dropped because standard output took them too slowly";
    }
    if (options_.as_summary) {
      std::cerr << ", " << bytes_ << " bytes";
    }
    std::cerr << std::endl;
  }

 private:
  struct Followed {
    Followed(const FieldAddress& what, ServiceClient& where)
        : address(what), service(where), client(where.Connect(*what.field)), row(what.ToString(), *what.field->type) {}

    FieldAddress address;
    ServiceClient& service;
    std::unique_ptr<FieldClient> client;
    FollowedField row;
  };

  bool IsDone() const noexcept { return options_.count != 0 && samples_ >= options_.count; }

  void Follow(const FieldAddress& address) {
    Followed& followed = fields_.emplace_back(address, ServiceOf(*address.interface));
    const auto posted = std::make_shared<std::atomic<bool>>(false);
    followed.client->Subscribe([this, &followed, posted] { ShowLater(followed, posted); });
  }

  /// From any thread, also when the field's client is gone. Posted once, however many samples arrive until it runs:
  /// they wait in the bounded queue, not in the loop.
  void ShowLater(Followed& followed, const std::shared_ptr<std::atomic<bool>>& posted) {
    if (posted->exchange(true)) {
      return;
    }
    loop_.Post([this, &followed, posted] {
      *posted = false;
      if (auto value = followed.client->TakeSample()) {
        ShowLater(followed, posted);
        Show(followed, std::move(*value));
      }
    });
  }

  ServiceClient& ServiceOf(const Interface& interface) {
    auto& service = services_[&interface];
    if (service == nullptr) {
      service = MakeServiceClient(loop_, interface, options_.instance, [this, &interface](bool found) {
        if (!terminal_) {
          // In one piece, because the stack may log at the same time.
          std::cerr << interface.name + ", instance " + std::to_string(options_.instance) +
                           (found ? ": found\n" : ": gone\n")
                    << std::flush;
        }
      });
    }
    return *service;
  }

  void Show(Followed& followed, Payload value) {
    if (IsDone()) {
      return;
    }
    if (terminal_) {
      followed.row.Add(std::move(value), Loop::Clock::now());
    } else if (options_.as_summary) {
      bytes_ += value.size();
      output_.WriteLine(SummaryLine(followed.address, value));
    } else {
      output_.WriteLine(RecordingLine(followed.address, value, std::chrono::system_clock::now()));
    }
    ++samples_;
  }

  /// As Loop::RunUntil, and keeps the table up to date.
  bool RunUntil(Loop::TimePoint deadline, const std::function<bool()>& done) {
    while (terminal_ && Loop::Clock::now() < deadline) {
      Redraw();
      // From when it is drawn: a slow terminal must leave time for the samples.
      if (loop_.RunUntil(std::min(Loop::Clock::now() + kRedrawPeriod, deadline), done)) {
        return true;
      }
    }
    return loop_.RunUntil(deadline, done);
  }

  void Redraw() {
    constexpr std::size_t kRowsBelow = 2;
    std::vector<TableRow> rows;
    for (Followed& followed : fields_) {
      rows.push_back({&followed.row, followed.service.IsFound(), followed.client->GetState()});
    }
    Terminal::Size space = terminal_->GetSize();
    space.rows -= std::min(space.rows, kRowsBelow);
    auto lines = FormatTable(rows, Loop::Clock::now(), space);
    lines.emplace_back();
    lines.push_back(Counted(samples_, "sample") + "; Ctrl-C ends");
    terminal_->Show(lines);
  }

  Output& output_;
  const WatchOptions& options_;
  std::uint64_t samples_ = 0;
  std::uint64_t bytes_ = 0;  // counted for the summary only
  std::set<const Field*> followed_;
  std::optional<Terminal> terminal_;
  // The order matters: the fields need their service, whose handlers use the loop.
  Loop loop_;
  std::map<const Interface*, std::unique_ptr<ServiceClient>> services_;
  std::list<Followed> fields_;
};

}  // namespace

void Watch(const Context& context, const WatchOptions& options) {
  Watcher watcher(context, options);
  try {
    watcher.Run();
  } catch (const Interrupted&) {  // the usual way to end it
  } catch (const ReaderGone&) {
  }
  watcher.Finish();
}

}  // namespace tarn7::tool
