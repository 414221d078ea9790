#include "tests/support/recording_application.h"

#include <chrono>
#include <dlfcn.h>
#include <set>
#include <sstream>
#include <utility>

#include "tests/support/hex.h"

namespace support {
namespace {

using namespace vsomeip;
using Message = std::shared_ptr<message>;
using Payload = std::shared_ptr<payload>;
using Milliseconds = std::chrono::milliseconds;

class Recorder final : public RecordingApplication {
 public:
  const std::string& get_name() const override { return name_; }
  client_t get_client() const override { return kClient; }
  bool init() override { return true; }
  void start() override {
    if (state_handler_) state_handler_(state_type_e::ST_REGISTERED);
  }
  void stop() override {}
  bool is_routing() const override { return false; }
  bool is_available(service_t, instance_t, major_version_t, minor_version_t) const override { return false; }
  void register_state_handler(const state_handler_t& handler) override { state_handler_ = handler; }
  void unregister_state_handler() override { state_handler_ = nullptr; }
  void get_offered_services_async(offer_type_e, const offered_services_handler_t& handler) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    offered_services_handler_ = handler;  // the stack has one place for it
    questions_.emplace_back();
    for (const auto& [service, instance, event] : offered_) {
      if (event == 0) questions_.back().emplace_back(service, instance);
    }
  }
  void clear_all_handler() override {}

  void offer_service(service_t service, instance_t instance, major_version_t major, minor_version_t minor) override {
    Write("offer_service", service, instance, major, minor);
    Note(offered_, {service, instance, 0});
  }
  void stop_offer_service(service_t service, instance_t instance, major_version_t, minor_version_t) override {
    Write("stop_offer_service", service, instance);
    Forget(offered_, {service, instance, 0});
  }
  void offer_event(service_t service, instance_t instance, event_t event, const std::set<eventgroup_t>& groups,
                   event_type_e type, Milliseconds cycle, bool resets, bool updates,
                   const epsilon_change_func_t& epsilon, reliability_type_e) override {
    Write("offer_event", service, instance, event, *groups.begin(), groups.size(), type, cycle.count(), resets, updates,
          epsilon != nullptr);
    Note(offered_, {service, instance, event});
  }
  void stop_offer_event(service_t service, instance_t instance, event_t event) override {
    Write("stop_offer_event", service, instance, event);
    Forget(offered_, {service, instance, event});
  }
  void request_service(service_t service, instance_t instance, major_version_t major, minor_version_t) override {
    Write("request_service", service, instance, major);
    Note(requested_, {service, instance, 0});
  }
  void release_service(service_t service, instance_t instance) override {
    Write("release_service", service, instance);
    Forget(requested_, {service, instance, 0});
  }
  void request_event(service_t service, instance_t instance, event_t event, const std::set<eventgroup_t>& groups,
                     event_type_e type, reliability_type_e) override {
    Write("request_event", service, instance, event, *groups.begin(), groups.size(), type);
    Note(requested_, {service, instance, event});
  }
  void release_event(service_t service, instance_t instance, event_t event) override {
    Write("release_event", service, instance, event);
    Forget(requested_, {service, instance, event});
  }
  void subscribe(service_t service, instance_t instance, eventgroup_t group, major_version_t major,
                 event_t event) override {
    Write("subscribe", service, instance, group, major, event);
    Note(subscribed_, {service, instance, group});
  }
  void unsubscribe(service_t service, instance_t instance, eventgroup_t group) override {
    Write("unsubscribe", service, instance, group);
    Forget(subscribed_, {service, instance, group});
  }
  void unsubscribe(service_t service, instance_t instance, eventgroup_t group, event_t event) override {
    Write("unsubscribe", service, instance, group, event);
  }
  void notify(service_t service, instance_t instance, event_t event, Payload payload, bool) const override {
    Write("notify", service, instance, event, payload->get_length());
    if (on_notify) on_notify(*payload);
  }
  void send(Message message) override {
    Write("send", message->get_service(), message->get_instance(), message->get_method(),
          message->get_interface_version(), message->get_session());
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      message->set_client(kClient);
      message->set_session(next_session++);
      sent_.push_back(message);
    }
    if (on_send) on_send(message);
  }
  void register_message_handler(service_t service, instance_t instance, method_t method,
                                const message_handler_t& handler) override {
    Write("register_message_handler", service, instance, method);
    Set(message_handlers_, {service, instance, method}, handler);
  }
  void unregister_message_handler(service_t service, instance_t instance, method_t method) override {
    Write("unregister_message_handler", service, instance, method);
    Set(message_handlers_, {service, instance, method}, nullptr);
  }
  void register_availability_handler(service_t service, instance_t instance, const availability_handler_t& handler,
                                     major_version_t, minor_version_t) override {
    Set(availability_handlers_, {service, instance, 0}, handler);
  }
  void unregister_availability_handler(service_t service, instance_t instance, major_version_t,
                                       minor_version_t) override {
    Set(availability_handlers_, {service, instance, 0}, nullptr);
  }
  void register_subscription_status_handler(service_t service, instance_t instance, eventgroup_t group, event_t event,
                                            subscription_status_handler_t handler, bool is_selective) override {
    Write("register_subscription_status_handler", service, instance, group, event);
    const std::lock_guard<std::mutex> lock(mutex_);
    status_handlers_[{service, instance, event}] = {std::move(handler), is_selective};
  }
  void unregister_subscription_status_handler(service_t service, instance_t instance, eventgroup_t group,
                                              event_t event) override {
    Write("unregister_subscription_status_handler", service, instance, group, event);
    const std::lock_guard<std::mutex> lock(mutex_);
    status_handlers_.erase({service, instance, event});
  }

 private:
  template <typename... Arguments>
  void Write(const char* name, Arguments... arguments) const {
    std::ostringstream line;
    line << name << std::hex;
    ((line << ' ' << static_cast<unsigned long>(arguments)), ...);
    if (on_call) on_call(line.str());
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(line.str());
  }
  template <typename Map>
  void Set(Map& handlers, const Key& key, const typename Map::mapped_type& handler) {
    const std::lock_guard<std::mutex> lock(mutex_);
    handlers.erase(key);
    if (handler) handlers.emplace(key, handler);
  }

  void Note(std::set<Key>& keys, const Key& key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    keys.insert(key);
  }
  void Forget(std::set<Key>& keys, const Key& key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    keys.erase(key);
  }

  const std::string name_ = "recording";
  state_handler_t state_handler_;  // set before start()
};

std::shared_ptr<Recorder> TheApplication() {
  static const auto application = std::make_shared<Recorder>();
  return application;
}

// Hands out the one application; messages come from the stack's own runtime, which vsomeip::runtime::get() below hides.
class RecordingRuntime final : public runtime {
 public:
  std::shared_ptr<application> create_application(const std::string&) override { return TheApplication(); }
  std::shared_ptr<application> create_application(const std::string&, const std::string&) override {
    return TheApplication();
  }
  std::shared_ptr<application> get_application(const std::string&) const override { return TheApplication(); }
  void remove_application(const std::string&) override {}
  Message create_message(bool reliable) const override { return real_->create_message(reliable); }
  Message create_request(bool reliable) const override { return real_->create_request(reliable); }
  Message create_notification(bool reliable) const override { return real_->create_notification(reliable); }
  Message create_response(const Message& request) const override { return real_->create_response(request); }
  Payload create_payload() const override { return real_->create_payload(); }
  Payload create_payload(const byte_t* data, std::uint32_t size) const override {
    return real_->create_payload(data, size);
  }
  Payload create_payload(const std::vector<byte_t>& data) const override { return real_->create_payload(data); }

 private:
  using Get = std::shared_ptr<runtime> (*)();
  const std::shared_ptr<runtime> real_ = reinterpret_cast<Get>(dlsym(RTLD_NEXT, "_ZN10vsomeip_v37runtime3getEv"))();
};

}  // namespace

RecordingApplication& RecordingApplication::Get() { return *TheApplication(); }

std::vector<std::string> RecordingApplication::TakeCalls() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(calls_, {});
}

std::vector<Message> RecordingApplication::TakeSent() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(sent_, {});
}

std::size_t RecordingApplication::CountLeftovers() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return message_handlers_.size() + status_handlers_.size() + availability_handlers_.size() + requested_.size() +
         subscribed_.size() + offered_.size();
}

RecordingApplication::Call RecordingApplication::Arrive(const Message& message) const {
  const Key key{message->get_service(), message->get_instance(), message->get_method()};
  constexpr method_t kEventBit = 0x8000;
  const bool is_event = (message->get_method() & kEventBit) != 0;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (is_event && (subscribed_.count(key) == 0 || requested_.count(key) == 0)) return nullptr;
  const auto found = message_handlers_.find(key);
  if (found == message_handlers_.end()) return nullptr;
  return [handler = found->second, message] { handler(message); };
}

RecordingApplication::Call RecordingApplication::ArriveStatus(service_t service, instance_t instance, event_t event,
                                                              std::uint16_t status) const {
  const Key key{service, instance, event};
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = status_handlers_.find(key);
  if (subscribed_.count(key) == 0 || found == status_handlers_.end()) return nullptr;
  if (status != 0 && !found->second.hears_of_rejections) return nullptr;
  return [=, handler = found->second.handler] { handler(service, instance, event, event, status); };
}

RecordingApplication::Call RecordingApplication::ArriveAvailability(service_t service, instance_t instance,
                                                                    bool available) const {
  const Key key{service, instance, 0};
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = availability_handlers_.find(key);
  if (requested_.count(key) == 0 || found == availability_handlers_.end()) return nullptr;
  return [=, handler = found->second] { handler(service, instance, available); };
}

bool RecordingApplication::AnswerWhatIsOffered(const std::vector<std::pair<service_t, instance_t>>& by_others) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (questions_.empty()) return false;
  auto offered = std::move(questions_.front());
  questions_.pop_front();
  const auto handler = offered_services_handler_;
  lock.unlock();
  offered.insert(offered.end(), by_others.begin(), by_others.end());
  handler(offered);
  return true;
}

Message ResponseTo(const Message& request, const std::string& payload) {
  auto response = runtime::get()->create_response(request);
  response->set_payload(runtime::get()->create_payload(Bytes(payload)));
  return response;
}

Message Notification(service_t service, instance_t instance, event_t event, std::uint8_t version,
                     const std::string& payload) {
  auto notification = runtime::get()->create_notification(false);
  notification->set_service(service);
  notification->set_instance(instance);
  notification->set_method(event);
  notification->set_interface_version(version);
  notification->set_client(0);
  notification->set_payload(runtime::get()->create_payload(Bytes(payload)));
  return notification;
}

}  // namespace support

// Takes the place of the stack's own function for the whole process.
namespace vsomeip_v3 {
__attribute__((visibility("default"))) std::shared_ptr<runtime> runtime::get() {
  static const auto instance = std::make_shared<support::RecordingRuntime>();
  return instance;
}
}  // namespace vsomeip_v3
