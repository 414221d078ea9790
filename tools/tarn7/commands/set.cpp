#include <memory>

#include "tools/tarn7/client/call.h"
#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

struct SetOptions : ServiceOptions {
  std::string address;
  std::string value;
};

void Set(Output& output, const SetOptions& options) {
  const FieldAddress address = FindAddress(options.address);
  if (!address.field->HasSetter()) {
    throw CommandError(Status::kUsage, address.ToString() + " has no setter: it can only be read");
  }
  const Json value = ReadJsonArgument(options.value);
  address.field->Encode(value);  // a wrong value is refused before anything goes on the network
  Loop loop;
  const auto service = MakeServiceClient(loop, *address.interface, options.instance);
  const auto field = service->Connect(*address.field);
  Call(loop, address, *service, *field, options.Deadline(),
       [&value](FieldClient& client, auto answered) { client.StartSet(value, std::move(answered)); });
  output.WriteLine(ToText(field->TakeAnswer()));
}

}  // namespace

void AddSetCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("set", "Write a field and print what the service reports back");
  const auto options = std::make_shared<SetOptions>();
  command->add_option("FIELD", options->address, "The field, as INTERFACE/FIELD")->required();
  command->add_option("JSON", options->value, "The new value, as `get` prints it; - reads it from standard input")
      ->required();
  AddInstanceOption(*command, *options);
  AddTimeoutOption(*command, *options, "How long to wait for service and answer; 2000 if not given");
  command->footer("Example:\n  tarn7 set chargetimemanager/chargeTimeCalculations '[{\"member0\":42}]'");
  command->callback([&chosen, options] { chosen = [options](Output& output) { Set(output, *options); }; });
}

}  // namespace tarn7::tool
