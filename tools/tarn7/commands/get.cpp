#include <memory>

#include "tools/tarn7/client/call.h"
#include "tools/tarn7/commands/common.h"
#include "tools/tarn7/stack/stack_service_client.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

void Get(const Context& context, const GetOptions& options) {
  const FieldAddress address = context.interfaces.FindAddress(options.address);
  const Loop::TimePoint deadline = options.Deadline();
  Loop loop;
  const auto service = options.hex ? std::make_unique<StackServiceClient>(loop, *address.interface, options.instance)
                                   : MakeServiceClient(loop, *address.interface, options.instance);
  const auto field = service->Connect(*address.field);
  Call(loop, address, *service, *field, deadline,
       [](FieldClient& client, auto answered) { client.StartGet(std::move(answered)); });
  const Payload payload = field->TakeAnswer();
  context.output.WriteLine(options.hex ? ToHex(payload.data(), payload.size())
                                       : PayloadText(*address.field->type, payload));
}

}  // namespace tarn7::tool
