#include "tools/tarn7/client/call.h"

#include "tools/tarn7/error.h"

namespace tarn7::tool {

void Call(Loop& loop, const FieldAddress& address, ServiceClient& service, FieldClient& field, Loop::TimePoint deadline,
          const StartCall& start) {
  service.Wait(deadline);
  bool answered = false;
  start(field, [&loop, &answered] { loop.Post([&answered] { answered = true; }); });
  if (!loop.RunUntil(deadline, [&answered] { return answered; })) {
    throw CommandError(Status::kUnavailable, address.ToString() + " was not answered in time");
  }
}

}  // namespace tarn7::tool
