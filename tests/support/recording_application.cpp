#include "tests/support/recording_application.h"

#include <cstdio>
#include <dlfcn.h>
#include <utility>

#include "tests/support/hex.h"

namespace support {

namespace {

// The stack's own runtime, which this program's vsomeip::runtime::get() stands in front of.
std::shared_ptr<vsomeip::runtime> RealRuntime() {
  using Get = std::shared_ptr<vsomeip::runtime> (*)();
  static const auto get = reinterpret_cast<Get>(dlsym(RTLD_NEXT, "_ZN10vsomeip_v37runtime3getEv"));
  return get();
}

std::shared_ptr<RecordingApplication> TheApplication() {
  static const auto application = std::make_shared<RecordingApplication>();
  return application;
}

class RecordingRuntime final : public vsomeip::runtime {
 public:
  std::shared_ptr<vsomeip::application> create_application(const std::string&) override { return TheApplication(); }
  std::shared_ptr<vsomeip::application> create_application(const std::string&, const std::string&) override {
    return TheApplication();
  }
  std::shared_ptr<vsomeip::application> get_application(const std::string&) const override { return TheApplication(); }
  void remove_application(const std::string&) override {}
  std::shared_ptr<vsomeip::message> create_message(bool reliable) const override {
    return RealRuntime()->create_message(reliable);
  }
  std::shared_ptr<vsomeip::message> create_request(bool reliable) const override {
    return RealRuntime()->create_request(reliable);
  }
  std::shared_ptr<vsomeip::message> create_notification(bool reliable) const override {
    return RealRuntime()->create_notification(reliable);
  }
  std::shared_ptr<vsomeip::message> create_response(const std::shared_ptr<vsomeip::message>& request) const override {
    return RealRuntime()->create_response(request);
  }
  std::shared_ptr<vsomeip::payload> create_payload() const override { return RealRuntime()->create_payload(); }
  std::shared_ptr<vsomeip::payload> create_payload(const vsomeip::byte_t* data, std::uint32_t size) const override {
    return RealRuntime()->create_payload(data, size);
  }
  std::shared_ptr<vsomeip::payload> create_payload(const std::vector<vsomeip::byte_t>& data) const override {
    return RealRuntime()->create_payload(data);
  }
};

// A copy of a handler, to be called without the lock; empty where there is none.
template <typename Map, typename KeyType>
typename Map::mapped_type Find(const Map& handlers, const KeyType& key) {
  const auto found = handlers.find(key);
  return found == handlers.end() ? typename Map::mapped_type() : found->second;
}

}  // namespace

RecordingApplication& RecordingApplication::Get() { return *TheApplication(); }

template <typename... Arguments>
void RecordingApplication::Record(const char* name, Arguments... arguments) const {
  std::string line = name;
  const auto append = [&line](unsigned long argument) {
    char text[20];
    std::snprintf(text, sizeof(text), " %lx", argument);
    line += text;
  };
  (append(static_cast<unsigned long>(arguments)), ...);
  if (on_call) {
    on_call(line);
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  calls_.push_back(line);
}

std::vector<std::string> RecordingApplication::TakeCalls() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(calls_, {});
}

std::vector<std::shared_ptr<vsomeip::message>> RecordingApplication::TakeSent() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(sent_, {});
}

std::size_t RecordingApplication::HandlerCount() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return message_handlers_.size() + status_handlers_.size() + availability_handlers_.size();
}

void RecordingApplication::Deliver(const std::shared_ptr<vsomeip::message>& message) const {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto handler =
      Find(message_handlers_, Key{message->get_service(), message->get_instance(), message->get_method()});
  lock.unlock();
  if (handler) {
    handler(message);
  }
}

void RecordingApplication::ReportStatus(vsomeip::service_t service, vsomeip::instance_t instance,
                                        vsomeip::event_t event, std::uint16_t status) const {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto handler = Find(status_handlers_, Key{service, instance, event});
  lock.unlock();
  if (handler) {
    handler(service, instance, event, event, status);
  }
}

void RecordingApplication::ReportAvailability(vsomeip::service_t service, vsomeip::instance_t instance,
                                              bool available) const {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto handler = Find(availability_handlers_, std::pair(service, instance));
  lock.unlock();
  if (handler) {
    handler(service, instance, available);
  }
}

void RecordingApplication::offer_service(vsomeip::service_t service, vsomeip::instance_t instance,
                                         vsomeip::major_version_t major, vsomeip::minor_version_t minor) {
  Record("offer_service", service, instance, major, minor);
}

void RecordingApplication::stop_offer_service(vsomeip::service_t service, vsomeip::instance_t instance,
                                              vsomeip::major_version_t, vsomeip::minor_version_t) {
  Record("stop_offer_service", service, instance);
}

void RecordingApplication::offer_event(vsomeip::service_t service, vsomeip::instance_t instance,
                                       vsomeip::event_t notifier, const std::set<vsomeip::eventgroup_t>& eventgroups,
                                       vsomeip::event_type_e type, std::chrono::milliseconds cycle, bool, bool,
                                       const vsomeip::epsilon_change_func_t&, vsomeip::reliability_type_e) {
  Record("offer_event", service, instance, notifier, *eventgroups.begin(), eventgroups.size(), type, cycle.count());
}

void RecordingApplication::stop_offer_event(vsomeip::service_t service, vsomeip::instance_t instance,
                                            vsomeip::event_t event) {
  Record("stop_offer_event", service, instance, event);
}

void RecordingApplication::request_service(vsomeip::service_t service, vsomeip::instance_t instance,
                                           vsomeip::major_version_t major, vsomeip::minor_version_t) {
  Record("request_service", service, instance, major);
}

void RecordingApplication::release_service(vsomeip::service_t service, vsomeip::instance_t instance) {
  Record("release_service", service, instance);
}

void RecordingApplication::request_event(vsomeip::service_t service, vsomeip::instance_t instance,
                                         vsomeip::event_t event, const std::set<vsomeip::eventgroup_t>& eventgroups,
                                         vsomeip::event_type_e type, vsomeip::reliability_type_e) {
  Record("request_event", service, instance, event, *eventgroups.begin(), eventgroups.size(), type);
}

void RecordingApplication::release_event(vsomeip::service_t service, vsomeip::instance_t instance,
                                         vsomeip::event_t event) {
  Record("release_event", service, instance, event);
}

void RecordingApplication::subscribe(vsomeip::service_t service, vsomeip::instance_t instance,
                                     vsomeip::eventgroup_t eventgroup, vsomeip::major_version_t major,
                                     vsomeip::event_t event) {
  Record("subscribe", service, instance, eventgroup, major, event);
}

void RecordingApplication::unsubscribe(vsomeip::service_t service, vsomeip::instance_t instance,
                                       vsomeip::eventgroup_t eventgroup) {
  Record("unsubscribe", service, instance, eventgroup);
}

void RecordingApplication::unsubscribe(vsomeip::service_t service, vsomeip::instance_t instance,
                                       vsomeip::eventgroup_t eventgroup, vsomeip::event_t event) {
  Record("unsubscribe", service, instance, eventgroup, event);
}

void RecordingApplication::send(std::shared_ptr<vsomeip::message> message) {
  Record("send", message->get_service(), message->get_instance(), message->get_method(),
         message->get_interface_version());
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    message->set_client(kClient);
    message->set_session(++session_);
    sent_.push_back(message);
  }
  if (on_send) {
    on_send(message);
  }
}

void RecordingApplication::notify(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
                                  std::shared_ptr<vsomeip::payload> payload, bool) const {
  Record("notify", service, instance, event, payload->get_length());
}

void RecordingApplication::register_message_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                                    vsomeip::method_t method,
                                                    const vsomeip::message_handler_t& handler) {
  Record("register_message_handler", service, instance, method);
  const std::lock_guard<std::mutex> lock(mutex_);
  message_handlers_[{service, instance, method}] = handler;
}

void RecordingApplication::unregister_message_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                                      vsomeip::method_t method) {
  Record("unregister_message_handler", service, instance, method);
  const std::lock_guard<std::mutex> lock(mutex_);
  message_handlers_.erase({service, instance, method});
}

void RecordingApplication::register_availability_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                                         const vsomeip::availability_handler_t& handler,
                                                         vsomeip::major_version_t, vsomeip::minor_version_t) {
  const std::lock_guard<std::mutex> lock(mutex_);
  availability_handlers_[{service, instance}] = handler;
}

void RecordingApplication::unregister_availability_handler(vsomeip::service_t service, vsomeip::instance_t instance,
                                                           vsomeip::major_version_t, vsomeip::minor_version_t) {
  const std::lock_guard<std::mutex> lock(mutex_);
  availability_handlers_.erase({service, instance});
}

void RecordingApplication::register_subscription_status_handler(vsomeip::service_t service,
                                                                vsomeip::instance_t instance,
                                                                vsomeip::eventgroup_t eventgroup,
                                                                vsomeip::event_t event,
                                                                vsomeip::subscription_status_handler_t handler, bool) {
  Record("register_subscription_status_handler", service, instance, eventgroup, event);
  const std::lock_guard<std::mutex> lock(mutex_);
  status_handlers_[{service, instance, event}] = std::move(handler);
}

void RecordingApplication::unregister_subscription_status_handler(vsomeip::service_t service,
                                                                  vsomeip::instance_t instance,
                                                                  vsomeip::eventgroup_t eventgroup,
                                                                  vsomeip::event_t event) {
  Record("unregister_subscription_status_handler", service, instance, eventgroup, event);
  const std::lock_guard<std::mutex> lock(mutex_);
  status_handlers_.erase({service, instance, event});
}

std::shared_ptr<vsomeip::message> ResponseTo(const std::shared_ptr<vsomeip::message>& request,
                                             const std::string& payload) {
  auto response = vsomeip::runtime::get()->create_response(request);
  response->set_payload(vsomeip::runtime::get()->create_payload(Bytes(payload)));
  return response;
}

std::shared_ptr<vsomeip::message> Notification(vsomeip::service_t service, vsomeip::instance_t instance,
                                               vsomeip::event_t event, std::uint8_t version,
                                               const std::string& payload) {
  auto notification = vsomeip::runtime::get()->create_notification(false);
  notification->set_service(service);
  notification->set_instance(instance);
  notification->set_method(event);
  notification->set_interface_version(version);
  notification->set_client(0);
  notification->set_payload(vsomeip::runtime::get()->create_payload(Bytes(payload)));
  return notification;
}

}  // namespace support

// Takes the place of the stack's own function for the whole process.
namespace vsomeip_v3 {
std::shared_ptr<runtime> runtime::get() {
  static const auto instance = std::make_shared<support::RecordingRuntime>();
  return instance;
}
}  // namespace vsomeip_v3
