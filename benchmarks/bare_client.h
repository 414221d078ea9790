#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

#include <vsomeip/vsomeip.hpp>

namespace benchmarks {

/// Waited for on one thread, raised on another. Must outlive the call that raises it, not only what that brings about.
class Signal {
 public:
  void Raise() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      raised_ = true;
    }
    changed_.notify_one();
  }
  /// Waits until it is raised, and lowers it. Throws std::runtime_error when that takes too long.
  void Await() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, std::chrono::seconds(10), [this] { return raised_; })) {
      throw std::runtime_error("no answer");
    }
    raised_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool raised_ = false;
};

/// Waits until a requested service instance is there. Throws std::runtime_error when it does not come.
inline void AwaitService(vsomeip::application& application, vsomeip::service_t service, vsomeip::instance_t instance) {
  const auto available = std::make_shared<Signal>();
  application.register_availability_handler(service, instance, [available](auto, auto, bool isAvailable) {
    if (isAvailable) {
      available->Raise();
    }
  });
  available->Await();
  application.unregister_availability_handler(service, instance);
}

/// One service instance, used straight through the stack's interface with no more than that asks for: what the
/// product's round trips are measured against. One call at a time.
class BareClient {
 public:
  BareClient(std::shared_ptr<vsomeip::application> application, vsomeip::service_t service,
             vsomeip::instance_t instance, vsomeip::major_version_t major)
      : application_(std::move(application)), service_(service), instance_(instance), major_(major) {
    application_->request_service(service_, instance_, major_);
    AwaitService(*application_, service_, instance_);
  }
  ~BareClient() {
    for (const vsomeip::method_t id : listened_) {
      application_->unregister_message_handler(service_, instance_, id);
    }
    application_->release_service(service_, instance_);
  }
  BareClient(const BareClient&) = delete;
  BareClient& operator=(const BareClient&) = delete;

  /// Must come before the first call of the method, or the first notification of the event, that is awaited.
  void Listen(vsomeip::method_t methodOrEvent) {
    application_->register_message_handler(service_, instance_, methodOrEvent,
                                           [inbox = inbox_](const std::shared_ptr<vsomeip::message>& message) {
                                             inbox->latest = message;
                                             inbox->arrived.Raise();
                                           });
    listened_.insert(methodOrEvent);
  }
  /// Once per event. The notifications that come from now on are received.
  void Follow(vsomeip::event_t event) {
    Listen(event);
    application_->request_event(service_, instance_, event, {event}, vsomeip::event_type_e::ET_FIELD);
    application_->subscribe(service_, instance_, event, major_);
    Receive();  // the value as it stands
  }

  /// Sends a request with the payload, or without one if it is null.
  void Send(vsomeip::method_t method, const std::shared_ptr<vsomeip::payload>& payload,
            vsomeip::message_type_e type = vsomeip::message_type_e::MT_REQUEST) {
    const auto request = vsomeip::runtime::get()->create_request(false);
    request->set_service(service_);
    request->set_instance(instance_);
    request->set_method(method);
    request->set_interface_version(major_);
    request->set_message_type(type);
    if (payload != nullptr) {
      request->set_payload(payload);
    }
    application_->send(request);
  }

  /// The next message of what is listened to.
  std::shared_ptr<vsomeip::message> Receive() {
    inbox_->arrived.Await();
    return std::move(inbox_->latest);
  }

  /// A request and its response. Throws std::runtime_error for an error response.
  std::shared_ptr<vsomeip::message> Call(vsomeip::method_t method, const std::shared_ptr<vsomeip::payload>& payload) {
    Send(method, payload);
    auto response = Receive();
    if (response->get_return_code() != vsomeip::return_code_e::E_OK) {
      throw std::runtime_error("an error was answered");
    }
    return response;
  }

 private:
  // Shared with the handler, which may still be at its end when the message it has brought is already used.
  struct Inbox {
    Signal arrived;
    std::shared_ptr<vsomeip::message> latest;  // handed over by arrived
  };

  const std::shared_ptr<vsomeip::application> application_;
  const vsomeip::service_t service_;
  const vsomeip::instance_t instance_;
  const vsomeip::major_version_t major_;
  std::set<vsomeip::method_t> listened_;
  const std::shared_ptr<Inbox> inbox_ = std::make_shared<Inbox>();
};

}  // namespace benchmarks
