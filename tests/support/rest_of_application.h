#pragma once

#include <map>
#include <memory>
#include <string>

#include <vsomeip/vsomeip.hpp>

namespace support {

/// What the interface of an installed vsomeip3 holds beside the part that this project uses. Nobody calls it.
class RestOfApplication : public vsomeip::application {
 public:
  vsomeip::diagnosis_t get_diagnosis() const override { return 0; }
  void process(int) override {}
  void notify_one(vsomeip::service_t, vsomeip::instance_t, vsomeip::event_t, std::shared_ptr<vsomeip::payload>,
                  vsomeip::client_t, bool) const override {}
  vsomeip::security_mode_e get_security_mode() const override { return vsomeip::security_mode_e::SM_OFF; }
  bool are_available(available_t&, vsomeip::service_t, vsomeip::instance_t, vsomeip::major_version_t,
                     vsomeip::minor_version_t) const override {
    return false;
  }
  void register_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                     const vsomeip::subscription_handler_t&) override {}
  void register_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                     const vsomeip::subscription_handler_ext_t&) override {}
  void register_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                     const vsomeip::subscription_handler_sec_t&) override {}
  void register_async_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                           const vsomeip::async_subscription_handler_t&) override {}
  void register_async_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                           const vsomeip::async_subscription_handler_ext_t&) override {}
  void register_async_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t,
                                           vsomeip::async_subscription_handler_sec_t) override {}
  void unregister_subscription_handler(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t) override {}
  void set_routing_state(vsomeip::routing_state_e) override {}
  void set_watchdog_handler(const vsomeip::watchdog_handler_t&, std::chrono::seconds) override {}
  void set_sd_acceptance_required(const vsomeip::remote_info_t&, const std::string&, bool) override {}
  void set_sd_acceptance_required(const sd_acceptance_map_type_t&, bool) override {}
  void set_sd_acceptance_required(const vsomeip::remote_info_t&) override {}
  sd_acceptance_map_type_t get_sd_acceptance_required() override { return {}; }
  void register_sd_acceptance_handler(const vsomeip::sd_acceptance_handler_t&) override {}
  void register_reboot_notification_handler(const vsomeip::reboot_notification_handler_t&) override {}
  void register_routing_ready_handler(const vsomeip::routing_ready_handler_t&) override {}
  void register_routing_state_handler(const vsomeip::routing_state_handler_t&) override {}
  bool update_service_configuration(vsomeip::service_t, vsomeip::instance_t, std::uint16_t, bool, bool, bool) override {
    return false;
  }
  void update_security_policy_configuration(std::uint32_t, std::uint32_t, std::shared_ptr<vsomeip::policy>,
                                            std::shared_ptr<vsomeip::payload>,
                                            const vsomeip::security_update_handler_t&) override {}
  void remove_security_policy_configuration(std::uint32_t, std::uint32_t,
                                            const vsomeip::security_update_handler_t&) override {}
  void subscribe_with_debounce(vsomeip::service_t, vsomeip::instance_t, vsomeip::eventgroup_t, vsomeip::major_version_t,
                               vsomeip::event_t, const vsomeip::debounce_filter_t&) override {}
  void register_message_acceptance_handler(const vsomeip::message_acceptance_handler_t&) override {}
  std::map<std::string, std::string> get_additional_data(const std::string&) override { return {}; }
  void register_availability_handler(vsomeip::service_t, vsomeip::instance_t,
                                     const vsomeip::availability_state_handler_t&, vsomeip::major_version_t,
                                     vsomeip::minor_version_t) override {}
  void register_message_handler_ext(vsomeip::service_t, vsomeip::instance_t, vsomeip::method_t,
                                    const vsomeip::message_handler_t&, vsomeip::handler_registration_type_e) override {}
  std::shared_ptr<vsomeip::configuration> get_configuration() const override { return nullptr; }
  std::shared_ptr<vsomeip::policy_manager> get_policy_manager() const override { return nullptr; }
  vsomeip::connection_control_response_e change_connection_control(vsomeip::connection_control_request_e,
                                                                   const std::string&) override {
    return {};
  }

 protected:
  // The overloads that are used hide those of the same names that are not.
  using vsomeip::application::register_availability_handler;
};

}  // namespace support
