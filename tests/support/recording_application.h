#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include <vsomeip/vsomeip.hpp>

namespace support {

/// Stands in for the stack's application object: writes down what it is asked for, keeps the handlers, and lets a test
/// play the network. A test program that links this file gets it from vsomeip::runtime::get()->create_application();
/// messages and payloads are the stack's own.
class RecordingApplication : public vsomeip::application {
 public:
  static constexpr vsomeip::client_t kClient = 0x1234;

  /// The one application of the process.
  static RecordingApplication& Get();

  /// What was called since the last time, one line per call: the name and the arguments in hexadecimal.
  std::vector<std::string> TakeCalls();
  /// The requests that were sent since the last time.
  std::vector<std::shared_ptr<vsomeip::message>> TakeSent();
  std::size_t HandlerCount() const;

  /// Called with each message inside send(), before it returns.
  std::function<void(const std::shared_ptr<vsomeip::message>&)> on_send;
  /// Called with each line before it is written down; may throw to let the call fail.
  std::function<void(const std::string&)> on_call;

  /// Plays the network. The handler runs on the calling thread.
  void Deliver(const std::shared_ptr<vsomeip::message>& message) const;
  void ReportStatus(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
                    std::uint16_t status) const;
  void ReportAvailability(vsomeip::service_t service, vsomeip::instance_t instance, bool available) const;

 protected:
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;

  mutable std::mutex mutex_;  // guards the members below
  mutable std::vector<std::string> calls_;
  std::vector<std::shared_ptr<vsomeip::message>> sent_;
  std::map<Key, vsomeip::message_handler_t> message_handlers_;
  std::map<Key, vsomeip::subscription_status_handler_t> status_handlers_;
  std::map<Key, vsomeip::availability_handler_t> availability_handlers_;
};

/// A response to a request, or a notification, with a payload given in hexadecimal.
std::shared_ptr<vsomeip::message> ResponseTo(const std::shared_ptr<vsomeip::message>& request,
                                             const std::string& payload);
std::shared_ptr<vsomeip::message> Notification(vsomeip::service_t service, vsomeip::instance_t instance,
                                               vsomeip::event_t event, std::uint8_t version,
                                               const std::string& payload);

}  // namespace support
