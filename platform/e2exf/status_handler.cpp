#include <map>
#include <mutex>
#include <tuple>

#include "platform/e2exf/state_machine.h"
#include "platform/include/e2e_status_handler.h"

namespace ara::com::e2exf {

CheckResult StatusHandler::HandleCheckStatus(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t eventId,
                                             ProfileCheckStatus status) {
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;
  // Never destroyed: events of static proxies may still report. One entry per event that the process uses.
  static auto& mutex = *new std::mutex;  // guards events
  static auto& events = *new std::map<Key, StateMachine>;

  const std::lock_guard<std::mutex> lock(mutex);
  return {status, events[Key{serviceId, instanceId, eventId}].Check(status)};
}

}  // namespace ara::com::e2exf
