#include "tools/tarn7/stack/stack_application.h"

#include <chrono>
#include <future>
#include <stdexcept>

namespace tarn7::tool {

namespace {
constexpr std::chrono::seconds kStartTimeout{5};
}

StackApplication::StackApplication(const std::string& name) : application_(Runtime()->create_application(name)) {
  if (application_ == nullptr || !application_->init()) {
    throw std::runtime_error("the SOME/IP stack cannot be started");
  }
  const auto registered = std::make_shared<std::promise<void>>();
  application_->register_state_handler([registered, done = false](vsomeip::state_type_e state) mutable {
    if (state == vsomeip::state_type_e::ST_REGISTERED && !done) {
      done = true;
      registered->set_value();
    }
  });
  thread_ = std::thread([application = application_] { application->start(); });
  if (registered->get_future().wait_for(kStartTimeout) != std::future_status::ready) {
    Stop();
    throw std::runtime_error("the SOME/IP stack has not become ready");
  }
}

StackApplication::~StackApplication() { Stop(); }

void StackApplication::Stop() {
  application_->clear_all_handler();
  application_->stop();
  thread_.join();
}

}  // namespace tarn7::tool
