#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#ifdef TARN7_WHOLE_VSOMEIP_INTERFACE
#include "tests/support/rest_of_application.h"
#else
namespace support {
using RestOfApplication = vsomeip::application;
}
#endif

namespace support {

/// Stands in for the stack's application object: writes down what it is asked for, keeps the handlers, and lets a test
/// play the network. It is no kinder than a stack: who did not ask for rejections hears of none, and a notification, a
/// status or an availability reaches nobody who has not subscribed or requested what it belongs to. A test program that
/// links this file gets it from vsomeip::runtime::get()->create_application(); messages and payloads are the stack's
/// own.
class RecordingApplication : public RestOfApplication {
 public:
  static constexpr vsomeip::client_t kClient = 0x1234;

  /// The one application of the process.
  static RecordingApplication& Get();

  /// What was called since the last time, one line per call: the name and the arguments in hexadecimal. Of a message
  /// that is sent, the session id as it was before the stack replaced it.
  std::vector<std::string> TakeCalls();
  /// The requests that were sent since the last time.
  std::vector<std::shared_ptr<vsomeip::message>> TakeSent();
  /// Handlers, requests, subscriptions and offers that have not been taken back.
  std::size_t CountLeftovers() const;

  /// Called with each message inside send(), before it returns.
  std::function<void(const std::shared_ptr<vsomeip::message>&)> on_send;
  /// Called with the payload of each notification.
  std::function<void(const vsomeip::payload&)> on_notify;
  /// Called with each line before it is written down; may throw to let the call fail.
  std::function<void(const std::string&)> on_call;
  /// The session id that the stack gives the next request.
  std::atomic<vsomeip::session_t> next_session{0x0100};

  /// Plays the network. What arrives is for the handler that is registered then, and the call of it comes later: as the
  /// stacks do, these yield that call. Empty where the stack would call nobody.
  using Call = std::function<void()>;
  Call Arrive(const std::shared_ptr<vsomeip::message>& message) const;
  Call ArriveStatus(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
                    std::uint16_t status) const;
  Call ArriveAvailability(vsomeip::service_t service, vsomeip::instance_t instance, bool available) const;

  /// The same, called at once, on the calling thread.
  void Deliver(const std::shared_ptr<vsomeip::message>& message) const { Make(Arrive(message)); }
  void ReportStatus(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
                    std::uint16_t status) const {
    Make(ArriveStatus(service, instance, event, status));
  }
  void ReportAvailability(vsomeip::service_t service, vsomeip::instance_t instance, bool available) const {
    Make(ArriveAvailability(service, instance, available));
  }

  /// Answers the oldest question for what is offered that has no answer yet: what was offered here when it was put, and
  /// what others offer. False when there is none.
  bool AnswerWhatIsOffered(const std::vector<std::pair<vsomeip::service_t, vsomeip::instance_t>>& by_others);

 protected:
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;
  struct StatusHandler {
    vsomeip::subscription_status_handler_t handler;
    bool hears_of_rejections;
  };

  static void Make(const Call& call) {
    if (call) call();
  }

  mutable std::mutex mutex_;  // guards the members below
  mutable std::vector<std::string> calls_;
  std::vector<std::shared_ptr<vsomeip::message>> sent_;
  std::map<Key, vsomeip::message_handler_t> message_handlers_;
  std::map<Key, StatusHandler> status_handlers_;
  std::map<Key, vsomeip::availability_handler_t> availability_handlers_;
  vsomeip::offered_services_handler_t offered_services_handler_;
  std::deque<std::vector<std::pair<vsomeip::service_t, vsomeip::instance_t>>> questions_;
  std::set<Key> requested_;   // services, with 0 for the event, and events
  std::set<Key> subscribed_;  // eventgroups
  std::set<Key> offered_;     // services, with 0 for the event, and events
};

/// A response to a request, or a notification, with a payload given in hexadecimal.
std::shared_ptr<vsomeip::message> ResponseTo(const std::shared_ptr<vsomeip::message>& request,
                                             const std::string& payload);
std::shared_ptr<vsomeip::message> Notification(vsomeip::service_t service, vsomeip::instance_t instance,
                                               vsomeip::event_t event, std::uint8_t version,
                                               const std::string& payload);

}  // namespace support
