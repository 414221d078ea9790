#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/json_scalars.h"

namespace tarn7::tool {

namespace {

struct DecodeOptions {
  std::string address;
  std::vector<std::string> digits;
};

std::vector<std::uint8_t> ReadBytes(const std::vector<std::string>& digits) {
  std::string text;
  for (const std::string& part : digits) {
    text += part == "-" ? ReadText("-") : part;
  }
  text.erase(std::remove_if(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c) != 0; }),
             text.end());
  const Place source;
  return BytesFromHex(text, Place(source, "HEX"));
}

void Decode(Output& output, const DecodeOptions& options) {
  const FieldAddress address = FindAddress(options.address);
  const std::vector<std::uint8_t> bytes = ReadBytes(options.digits);
  try {
    for (const std::string& note : address.field->Check(bytes.data(), bytes.size())) {
      std::cerr << "warning: " << note << std::endl;
    }
    output.WriteLine(ToText(address.field->Decode(bytes.data(), bytes.size())));
  } catch (const PayloadError& error) {
    throw ValueError(error.what());
  }
}

}  // namespace

void AddDecodeCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("decode", "Print the value that the bytes of a payload are");
  const auto options = std::make_shared<DecodeOptions>();
  options->digits = {"-"};
  command->add_option("FIELD", options->address, "The field, as INTERFACE/FIELD")->required();
  command->add_option("HEX", options->digits,
                      "The payload, as `get --hex` prints it; white space is passed over. - or nothing reads it from "
                      "standard input");
  command->footer("Example:\n  tarn7 decode energysystem/notifications 0000000a 00000006 2000 0000002a");
  command->callback([&chosen, options] { chosen = [options](Output& output) { Decode(output, *options); }; });
}

}  // namespace tarn7::tool
