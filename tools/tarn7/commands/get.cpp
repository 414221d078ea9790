#include <memory>

#include "tools/tarn7/client/call.h"
#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/stack/stack_field_client.h"

namespace tarn7::tool {

namespace {

struct GetOptions : ServiceOptions {
  std::string address;
  bool hex = false;
};

void Get(Output& output, const GetOptions& options) {
  const FieldAddress address = FindAddress(options.address);
  const Loop::TimePoint deadline = options.Deadline();
  const StartCall start = [](FieldClient& field, auto answered) { field.StartGet(std::move(answered)); };
  Loop loop;
  if (options.hex) {
    StackServiceClient service(loop, *address.interface, options.instance);
    StackFieldClient field(service, *address.field);
    Call(loop, address, service, field, deadline, start);
    const auto payload = field.TakePayload();
    output.WriteLine(ToHex(payload.data(), payload.size()));
    return;
  }
  const auto service = MakeServiceClient(loop, *address.interface, options.instance);
  const auto field = service->Connect(*address.field);
  Call(loop, address, *service, *field, deadline, start);
  output.WriteLine(ToText(field->TakeAnswer()));
}

}  // namespace

void AddGetCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("get", "Read a field and print its value");
  const auto options = std::make_shared<GetOptions>();
  command->add_option("FIELD", options->address, "The field, as INTERFACE/FIELD")->required();
  AddInstanceOption(*command, *options);
  AddTimeoutOption(*command, *options, "How long to wait for service and answer; 2000 if not given");
  command->add_flag("--hex", options->hex, "Print the bytes of the payload, as they came, instead of the value");
  command->footer("Example:\n  tarn7 get energysystem/notifications --timeout 5000");
  command->callback([&chosen, options] { chosen = [options](Output& output) { Get(output, *options); }; });
}

}  // namespace tarn7::tool
