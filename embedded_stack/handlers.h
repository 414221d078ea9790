#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "embedded_stack/discovery/output.h"
#include "vsomeip/handler.hpp"

namespace vsomeip_v3::embedded {

// A registered handler. Calls of it that are already queued look at `registered` first, which it shares with the
// handler that takes its place: nothing that is queued is lost when a handler is replaced.
template <typename Function>
struct Slot {
  using Registered = std::shared_ptr<std::atomic<bool>>;

  Slot(Function its_call, Registered its_registered)
      : call(std::move(its_call)), registered(std::move(its_registered)) {}

  const Function call;
  const Registered registered;
};
template <typename Function>
using SlotPointer = std::shared_ptr<Slot<Function>>;

// What the application has registered, and which handlers a message or a change concerns. Not synchronized.
class Handlers {
 public:
  using MessageKey = std::tuple<service_t, instance_t, method_t>;
  using StatusKey = std::tuple<service_t, instance_t, eventgroup_t, event_t>;
  using AvailabilityKey = std::tuple<service_t, instance_t, major_version_t, minor_version_t>;
  using Available = DiscoveryOutput::Availability;

  void SetState(const state_handler_t& handler);  // null unregisters
  SlotPointer<state_handler_t> State() const { return state_; }

  void SetMessage(const MessageKey& key, const message_handler_t& handler);
  // The handler of the most specific key. Null if there is none.
  SlotPointer<message_handler_t> FindMessage(service_t service, instance_t instance, method_t method) const;

  // `present` is what is available now and concerns the key.
  SlotPointer<availability_handler_t> SetAvailability(const AvailabilityKey& key, const availability_handler_t& handler,
                                                      const std::vector<Available>& present);
  void RemoveAvailability(const AvailabilityKey& key);
  // The handlers for which this is a change.
  std::vector<SlotPointer<availability_handler_t>> ChangeAvailability(const Available& change);
  // That handler could not be called: it is a change for it still.
  void NotTold(const SlotPointer<availability_handler_t>& slot, const Available& change);
  std::set<ServiceInstance> ToldAvailable() const;
  static bool Concerns(const AvailabilityKey& key, const Available& change);

  void SetStatus(const StatusKey& key, const subscription_status_handler_t& handler, bool is_selective);
  std::vector<SlotPointer<subscription_status_handler_t>> FindStatus(const StatusKey& key, bool accepted) const;

  void Clear();

  // An application that stops or releases a service forgets what its handlers were told about it, so that they hear
  // of it again.
  void ForgetAvailability(const ServiceInstance& key);
  void ForgetAvailability();

  // What was replaced or removed. To be destroyed without a lock: a handler may own things that call back.
  using Retired = std::vector<std::shared_ptr<void>>;
  Retired TakeRetired() { return std::exchange(retired_, {}); }

 private:
  template <typename Function>
  void Replace(SlotPointer<Function>& slot, const Function& handler);

  struct AvailabilityEntry {
    SlotPointer<availability_handler_t> slot;
    std::set<ServiceInstance> available;  // as the handler was told
  };
  struct StatusEntry {
    SlotPointer<subscription_status_handler_t> slot;
    bool is_selective = false;  // hears of rejections, too
  };

  SlotPointer<state_handler_t> state_;
  std::map<MessageKey, SlotPointer<message_handler_t>> messages_;
  std::map<AvailabilityKey, AvailabilityEntry> availability_;
  std::map<StatusKey, StatusEntry> status_;
  Retired retired_;
};

}  // namespace vsomeip_v3::embedded
