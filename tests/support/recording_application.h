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
class RecordingApplication final : public vsomeip::application {
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

  const std::string& get_name() const override { return name_; }
  vsomeip::client_t get_client() const override { return kClient; }
  bool init() override { return true; }
  void start() override {}
  void stop() override {}
  void offer_service(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::major_version_t major,
                     vsomeip::minor_version_t minor) override;
  void stop_offer_service(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::major_version_t major,
                          vsomeip::minor_version_t minor) override;
  void offer_event(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t notifier,
                   const std::set<vsomeip::eventgroup_t>& eventgroups, vsomeip::event_type_e type,
                   std::chrono::milliseconds cycle, bool change_resets_cycle, bool update_on_change,
                   const vsomeip::epsilon_change_func_t& epsilon_change_func,
                   vsomeip::reliability_type_e reliability) override;
  void stop_offer_event(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event) override;
  void request_service(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::major_version_t major,
                       vsomeip::minor_version_t minor) override;
  void release_service(vsomeip::service_t service, vsomeip::instance_t instance) override;
  void request_event(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
                     const std::set<vsomeip::eventgroup_t>& eventgroups, vsomeip::event_type_e type,
                     vsomeip::reliability_type_e reliability) override;
  void release_event(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event) override;
  void subscribe(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::eventgroup_t eventgroup,
                 vsomeip::major_version_t major, vsomeip::event_t event) override;
  void unsubscribe(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::eventgroup_t eventgroup) override;
  void unsubscribe(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::eventgroup_t eventgroup,
                   vsomeip::event_t event) override;
  bool is_available(vsomeip::service_t, vsomeip::instance_t, vsomeip::major_version_t,
                    vsomeip::minor_version_t) const override {
    return false;
  }
  void send(std::shared_ptr<vsomeip::message> message) override;
  void notify(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
              std::shared_ptr<vsomeip::payload> payload, bool force) const override;
  void notify_one(vsomeip::service_t, vsomeip::instance_t, vsomeip::event_t, std::shared_ptr<vsomeip::payload>,
                  vsomeip::client_t, bool) const override {}
  void register_state_handler(const vsomeip::state_handler_t&) override {}
  void unregister_state_handler() override {}
  void register_message_handler(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::method_t method,
                                const vsomeip::message_handler_t& handler) override;
  void unregister_message_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                  vsomeip::method_t method) override;
  void register_availability_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                     const vsomeip::availability_handler_t& handler, vsomeip::major_version_t major,
                                     vsomeip::minor_version_t minor) override;
  void unregister_availability_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                       vsomeip::major_version_t major, vsomeip::minor_version_t minor) override;
  void register_subscription_status_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                            vsomeip::eventgroup_t eventgroup, vsomeip::event_t event,
                                            vsomeip::subscription_status_handler_t handler, bool) override;
  void unregister_subscription_status_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                              vsomeip::eventgroup_t eventgroup, vsomeip::event_t event) override;
  void clear_all_handler() override {}
  bool is_routing() const override { return false; }

 private:
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;

  template <typename... Arguments>
  void Record(const char* name, Arguments... arguments) const;

  const std::string name_ = "recording";
  mutable std::mutex mutex_;  // guards the members below
  mutable std::vector<std::string> calls_;
  std::vector<std::shared_ptr<vsomeip::message>> sent_;
  vsomeip::session_t session_ = 0x00FF;
  std::map<Key, vsomeip::message_handler_t> message_handlers_;
  std::map<Key, vsomeip::subscription_status_handler_t> status_handlers_;
  std::map<std::pair<std::uint16_t, std::uint16_t>, vsomeip::availability_handler_t> availability_handlers_;
};

/// A response to a request, or a notification, with a payload given in hexadecimal.
std::shared_ptr<vsomeip::message> ResponseTo(const std::shared_ptr<vsomeip::message>& request,
                                             const std::string& payload);
std::shared_ptr<vsomeip::message> Notification(vsomeip::service_t service, vsomeip::instance_t instance,
                                               vsomeip::event_t event, std::uint8_t version,
                                               const std::string& payload);

}  // namespace support
