#include <algorithm>
#include <cctype>
#include <iostream>

#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/json_checks.h"
#include "tools/tarn7/values/payload_check.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

namespace {

Payload ReadBytes(const std::vector<std::string>& digits) {
  std::string text;
  for (const std::string& part : digits) {
    text += part == "-" ? ReadText("-") : part;
  }
  text.erase(std::remove_if(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c) != 0; }),
             text.end());
  const Place source;
  return BytesFromHex(text, Place(source, "HEX"));
}

}  // namespace

void Decode(const Context& context, const DecodeOptions& options) {
  const ValueType& type = *context.interfaces.FindAddress(options.address).field->type;
  const Payload bytes = ReadBytes(options.digits);
  try {
    for (const std::string& note : CheckPayload(type, bytes)) {
      std::cerr << "warning: " << note << std::endl;
    }
    context.output.WriteLine(PayloadText(type, bytes));
  } catch (const PayloadError& error) {
    throw ValueError(error.what());
  }
}

}  // namespace tarn7::tool
