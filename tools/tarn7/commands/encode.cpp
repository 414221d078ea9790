#include <memory>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

struct EncodeOptions {
  std::string address;
  std::string value = "-";
};

void Encode(Output& output, const EncodeOptions& options) {
  const FieldAddress address = FindAddress(options.address);
  const auto bytes = address.field->Encode(ReadJsonArgument(options.value));
  output.WriteLine(ToHex(bytes.data(), bytes.size()));
}

}  // namespace

void AddEncodeCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("encode", "Print the bytes of the payload that carries a value");
  const auto options = std::make_shared<EncodeOptions>();
  command->add_option("FIELD", options->address, "The field, as INTERFACE/FIELD")->required();
  command->add_option("JSON", options->value,
                      "The value, as `get` prints it; - or nothing reads it from standard input");
  command->footer("Example:\n  tarn7 encode energysystem/notifications '[{\"member0\":42}]'");
  command->callback([&chosen, options] { chosen = [options](Output& output) { Encode(output, *options); }; });
}

}  // namespace tarn7::tool
