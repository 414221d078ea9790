#include <atomic>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <unistd.h>

#include "tools/tarn7/commands/common.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/library/offered_service.h"
#include "tools/tarn7/line_reader.h"
#include "tools/tarn7/model/field_values.h"
#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

/// A provided interface with the values that were given to it.
class Offer {
 public:
  Offer(const Interface& interface, const std::vector<FieldAddress>& fields, std::uint16_t instance)
      : interface_(interface), fields_(fields), service_(MakeSkeleton(interface, instance)) {}

  /// In the interface's order.
  void Update(const FieldValues& values) {
    for (const Field& field : interface_.fields) {
      const auto found = values.find(&field);
      if (found != values.end()) {
        service_->Update(field.name, found->second);
        ++count_;
      }
    }
  }

  /// A wrong line is reported, and changes nothing. From any thread.
  void ReadLine(std::string_view line, std::size_t number) {
    const std::string source = "line " + std::to_string(number);
    try {
      Update(ReadFieldValues(line, source, fields_));
    } catch (const std::exception& error) {
      std::cerr << "passed over: " + Printable(error.what()) + '\n' << std::flush;
    }
  }

  void Start() { service_->Offer(); }

  void Stop() {
    service_.reset();
    std::cerr << interface_.name << ": " << Counted(count_, "value") << " offered" << std::endl;
  }

 private:
  const Interface& interface_;
  const std::vector<FieldAddress>& fields_;
  std::unique_ptr<OfferedService> service_;
  std::atomic<std::uint64_t> count_{0};
};

}  // namespace

void OfferInterface(const Context& context, const OfferOptions& options) {
  const Interface& interface = context.interfaces.FindInterface(options.interface);
  if (!interface.IsOfLibrary()) {
    throw CommandError(Status::kUsage, interface.name + " is from " + interface.file +
                                           ", the library cannot offer it: use tarn7 simulate " + interface.name);
  }
  if (!interface.IsProvided()) {
    throw CommandError(
        Status::kUsage,
        interface.name + " is offered by the vehicle, not by the application: use tarn7 simulate " + interface.name);
  }
  RequireOneReaderOfStandardInput({{"--values", options.values_file == "-"},
                                   {"--follow", options.follow},
                                   {"--replay", options.replay.file == "-"}});
  if (options.values_file.empty() && options.replay.file.empty()) {
    throw CommandError(Status::kUsage, "the fields need values: --values FILE, --replay FILE, or both");
  }
  const std::vector<FieldAddress> fields = context.interfaces.FindAddresses(interface.name);
  Replay replay = ReadReplay(options.replay, fields);
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
      replay.PlayUntil(Loop::Clock::now(), [&offer](const Field& field, const Payload& payload) {
        offer.Update({{&field, payload}});
      });
    }
  } catch (const Interrupted&) {  // the usual way to end it
  }
  offer.Stop();
}

}  // namespace tarn7::tool
