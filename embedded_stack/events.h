#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "embedded_stack/discovery/output.h"
#include "embedded_stack/net/send_queue.h"
#include "vsomeip/message.hpp"

namespace vsomeip_v3::embedded {

// The events that are offered here, and the values of the fields among them. Not synchronized.
class OfferedEvents {
 public:
  struct Event {
    std::set<eventgroup_t> eventgroups;
    event_type_e type = event_type_e::ET_EVENT;
    std::chrono::milliseconds cycle{0};
    bool change_resets_cycle = false;
    bool update_on_change = true;
    SharedBytes value;  // null until the first notification
    TimePoint next_cycle = kNever;
  };

  // An event that is offered again keeps its value.
  void Offer(const ServiceInstance& key, event_t id, Event event);
  void StopOffer(const ServiceInstance& key, event_t id);
  void ForgetValues(const ServiceInstance& key);
  void Clear() { events_.clear(); }

  const Event* Find(const ServiceInstance& key, event_t id) const;
  bool HasEventgroup(const ServiceInstance& key, eventgroup_t eventgroup) const;

  // Keeps the value. True if it is to be sent now.
  bool SetValue(const ServiceInstance& key, event_t id, SharedBytes value, bool force, TimePoint now);

  // The fields of an eventgroup that have a value.
  std::vector<event_t> FieldsOf(const ServiceInstance& key, eventgroup_t eventgroup) const;

  struct Due {
    ServiceInstance key;
    event_t id;
  };
  // The events whose cycle is over.
  std::vector<Due> Poll(TimePoint now);
  TimePoint NextDeadline() const { return next_; }

 private:
  std::map<ServiceInstance, std::map<event_t, Event>> events_;
  TimePoint next_ = kNever;  // not later than any cycle is over
};

// The events that are used here: which ones are requested and subscribed, and the last values of the fields, for
// those who subscribe once more. Not synchronized.
class UsedEvents {
 public:
  void Request(const ServiceInstance& key, event_t id, const std::set<eventgroup_t>& eventgroups, event_type_e type);
  void Release(const ServiceInstance& key, event_t id);
  void Clear();

  enum class Added { kNewEventgroup, kNewEvent, kPending, kAccepted };
  Added Subscribe(const ServiceInstance& key, eventgroup_t eventgroup, event_t id);
  // ANY_EVENT ends all of the eventgroup. True if nothing of it is subscribed any more.
  bool Unsubscribe(const ServiceInstance& key, eventgroup_t eventgroup, event_t id);
  bool IsSubscribed(const ServiceInstance& key, event_t id) const;

  // The events whose subscription status changes by this, with ANY_EVENT resolved into the requested ones.
  std::vector<event_t> SetStatus(const ServiceInstance& key, eventgroup_t eventgroup, bool accepted);
  // The service is not used any more.
  void Unsubscribe(const ServiceInstance& key);
  // The provider is gone: nothing is accepted and no value is known any more.
  void Lose(const ServiceInstance& key);

  void Keep(const ServiceInstance& key, event_t id, std::shared_ptr<message> notification);
  std::vector<std::shared_ptr<message>> Kept(const ServiceInstance& key, eventgroup_t eventgroup, event_t id) const;

 private:
  struct Requested {
    std::set<eventgroup_t> eventgroups;
    event_type_e type = event_type_e::ET_EVENT;
    std::shared_ptr<message> last;
  };
  struct Instance {
    std::map<event_t, Requested> requested;
    std::map<eventgroup_t, std::map<event_t, bool>> subscribed;  // true: accepted
  };
  const Instance* Find(const ServiceInstance& key) const;
  static std::vector<event_t> Resolve(const Instance& instance, eventgroup_t eventgroup, event_t id);

  std::map<ServiceInstance, Instance> instances_;
};

}  // namespace vsomeip_v3::embedded
