#include "tools/tarn7/client/call.h"

#include <memory>

#include "tools/tarn7/client/service_search.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

Json Call(Loop& loop, const FieldAddress& address, std::uint16_t instance, Loop::TimePoint deadline,
          const StartCall& start) {
  // The search goes on during the call: it keeps the service requested.
  ServiceSearch search(loop, *address.interface, instance);
  const std::unique_ptr<FieldClient> field = address.field->Connect(MakeProxy(*address.interface, instance));
  search.Wait(deadline);
  bool answered = false;
  start(*field, [&loop, &answered] { loop.Post([&answered] { answered = true; }); });
  if (!loop.RunUntil(deadline, [&answered] { return answered; })) {
    throw CommandError(Status::kUnavailable, address.ToString() + " was not answered in time");
  }
  return field->TakeAnswer();
}

}  // namespace tarn7::tool
