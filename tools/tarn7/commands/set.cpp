#include <memory>

#include "tools/tarn7/client/call.h"
#include "tools/tarn7/commands/common.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

void Set(const Context& context, const SetOptions& options) {
  const FieldAddress address = context.interfaces.FindAddress(options.address);
  const ValueType& type = *address.field->type;
  if (!address.field->HasSetter()) {
    throw CommandError(Status::kUsage, address.ToString() + " has no setter: it can only be read");
  }
  // A wrong value is refused before anything goes on the network.
  const Payload value = EncodeArgument(type, options.value);
  Loop loop;
  const auto service = MakeServiceClient(loop, *address.interface, options.instance);
  const auto field = service->Connect(*address.field);
  Call(loop, address, *service, *field, options.Deadline(),
       [&value](FieldClient& client, auto answered) { client.StartSet(value, std::move(answered)); });
  context.output.WriteLine(PayloadText(type, field->TakeAnswer()));
}

}  // namespace tarn7::tool
