#include "tools/tarn7/values/encode.h"

#include "tools/tarn7/commands/commands.h"

namespace tarn7::tool {

void Encode(const Context& context, const EncodeOptions& options) {
  const FieldAddress address = context.interfaces.FindAddress(options.address);
  const Payload bytes = EncodeArgument(*address.field->type, options.value);
  context.output.WriteLine(ToHex(bytes.data(), bytes.size()));
}

}  // namespace tarn7::tool
