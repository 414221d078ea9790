#pragma once

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <vsomeip/vsomeip.hpp>

namespace benchmarks {

/// An application object of the stack's bare interface, started, and stopped when destroyed.
class Application {
 public:
  explicit Application(const std::string& name) : application_(vsomeip::runtime::get()->create_application(name)) {
    if (!application_->init()) {
      throw std::runtime_error("the stack cannot be started");
    }
    network_ = std::thread([this] { application_->start(); });
  }
  ~Application() {
    application_->stop();
    network_.join();
  }
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const std::shared_ptr<vsomeip::application>& Get() const { return application_; }

 private:
  const std::shared_ptr<vsomeip::application> application_;
  std::thread network_;
};

/// A field of an instance that is offered through the bare interface.
template <typename Field>
void OfferEvent(vsomeip::application& application, vsomeip::instance_t instance) {
  application.offer_event(Field::Service::service_id, instance, Field::event_id, {Field::event_id},
                          vsomeip::event_type_e::ET_FIELD, std::chrono::milliseconds::zero(), false, true, nullptr,
                          vsomeip::reliability_type_e::RT_UNRELIABLE);
}

template <typename Service>
void OfferService(vsomeip::application& application, vsomeip::instance_t instance) {
  application.offer_service(Service::service_id, instance, Service::major_version, Service::minor_version);
}

}  // namespace benchmarks
