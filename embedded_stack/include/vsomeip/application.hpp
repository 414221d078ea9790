#pragma once

#include <chrono>
#include <memory>
#include <set>
#include <string>

#include "vsomeip/constants.hpp"
#include "vsomeip/enumeration_types.hpp"
#include "vsomeip/export.hpp"
#include "vsomeip/handler.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

class message;
class payload;

// One SOME/IP node: it offers services, uses services, or both, at an address of its own.
//
// Threads. Every operation may be called from any thread, handlers included. Handlers run one after the other on
// threads of the application's own, never inside a call to this interface. A handler that takes longer than 100 ms is
// overtaken: the next one runs on another thread (up to ten), so a handler may wait for a response. Discovery goes on
// regardless.
//
// After unregister_..._handler() or clear_all_handler() no call of that handler begins, queued ones included; one
// that is running may go on. After stop() none runs, with two exceptions: stop() called by a handler cannot wait for
// that handler, and a handler that does not return within 700 ms is left behind (and reported on standard error).
class VSOMEIP_IMPORT_EXPORT application {
 public:
  virtual ~application() = default;

  virtual const std::string& get_name() const = 0;
  // Known after init().
  virtual client_t get_client() const = 0;

  // Reads the configuration and takes the address. False, with the reason on standard error, if either fails.
  virtual bool init() = 0;
  // Serves the network until stop(). Handlers do not run on this thread.
  virtual void start() = 0;
  // Takes back all offers and subscriptions, tells the peers, and returns within a second. Before start(): the next
  // start() returns at once. init() makes the application ready again.
  virtual void stop() = 0;

  virtual void offer_service(service_t service, instance_t instance, major_version_t major = DEFAULT_MAJOR,
                             minor_version_t minor = DEFAULT_MINOR) = 0;
  // Forgets the values of the instance's fields as well.
  virtual void stop_offer_service(service_t service, instance_t instance, major_version_t major = DEFAULT_MAJOR,
                                  minor_version_t minor = DEFAULT_MINOR) = 0;

  // A cycle other than zero repeats the value in that period. With `update_on_change` false only the cycle sends.
  virtual void offer_event(service_t service, instance_t instance, event_t notifier,
                           const std::set<eventgroup_t>& eventgroups, event_type_e type = event_type_e::ET_EVENT,
                           std::chrono::milliseconds cycle = std::chrono::milliseconds::zero(),
                           bool change_resets_cycle = false, bool update_on_change = true,
                           const epsilon_change_func_t& epsilon_change_func = nullptr,
                           reliability_type_e reliability = reliability_type_e::RT_UNKNOWN) = 0;
  virtual void stop_offer_event(service_t service, instance_t instance, event_t event) = 0;

  // Only requested services become available. Wildcards are allowed.
  virtual void request_service(service_t service, instance_t instance, major_version_t major = ANY_MAJOR,
                               minor_version_t minor = ANY_MINOR) = 0;
  virtual void release_service(service_t service, instance_t instance) = 0;

  // Says which eventgroups bring an event, and whether it is a field. To be called before subscribe().
  virtual void request_event(service_t service, instance_t instance, event_t event,
                             const std::set<eventgroup_t>& eventgroups, event_type_e type = event_type_e::ET_EVENT,
                             reliability_type_e reliability = reliability_type_e::RT_UNKNOWN) = 0;
  virtual void release_event(service_t service, instance_t instance, event_t event) = 0;

  // Lasts until unsubscribe(), over any number of the provider's restarts. `major` must be the provider's.
  virtual void subscribe(service_t service, instance_t instance, eventgroup_t eventgroup,
                         major_version_t major = DEFAULT_MAJOR, event_t event = ANY_EVENT) = 0;
  virtual void unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup) = 0;
  virtual void unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup, event_t event) = 0;

  virtual bool is_available(service_t service, instance_t instance, major_version_t major = ANY_MAJOR,
                            minor_version_t minor = ANY_MINOR) const = 0;

  // A request gets its client and session id here. What cannot be sent (service not available, payload above
  // 16 MiB, no message type) is reported on standard error and dropped: no handler hears of it.
  virtual void send(std::shared_ptr<message> message) = 0;

  // The bytes are those of now, whatever becomes of the payload. They are copied only if the caller keeps it, that is,
  // does not move it here. An unchanged field value is not sent unless forced.
  virtual void notify(service_t service, instance_t instance, event_t event, std::shared_ptr<payload> payload,
                      bool force = false) const = 0;

  // Calls the handler once with what this node, which is this process, offers. Other nodes reach all of it.
  virtual void get_offered_services_async(offer_type_e type, const offered_services_handler_t& handler) = 0;

  virtual void register_state_handler(const state_handler_t& handler) = 0;
  virtual void unregister_state_handler() = 0;

  // One handler per key; the most specific key gets the message, the method being the first to be widened.
  virtual void register_message_handler(service_t service, instance_t instance, method_t method,
                                        const message_handler_t& handler) = 0;
  virtual void unregister_message_handler(service_t service, instance_t instance, method_t method) = 0;

  // A handler of one instance hears its present state at once; one with wildcards, what is available already.
  virtual void register_availability_handler(service_t service, instance_t instance,
                                             const availability_handler_t& handler, major_version_t major = ANY_MAJOR,
                                             minor_version_t minor = ANY_MINOR) = 0;
  virtual void unregister_availability_handler(service_t service, instance_t instance,
                                               major_version_t major = ANY_MAJOR,
                                               minor_version_t minor = ANY_MINOR) = 0;

  // Called for each acknowledgement of a new or restored subscription and, if `is_selective`, for each rejection.
  // The loss of the provider is reported by the availability handlers only.
  virtual void register_subscription_status_handler(service_t service, instance_t instance, eventgroup_t eventgroup,
                                                    event_t event, subscription_status_handler_t handler,
                                                    bool is_selective = false) = 0;
  virtual void unregister_subscription_status_handler(service_t service, instance_t instance, eventgroup_t eventgroup,
                                                      event_t event) = 0;

  virtual void clear_all_handler() = 0;

  // Always true: each application is a node of its own.
  virtual bool is_routing() const = 0;
};

}  // namespace vsomeip_v3
