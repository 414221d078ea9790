#include "platform/vsomeipbinding/stack_thread.h"

#include <chrono>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <unistd.h>

#include "platform/include/connection.h"
#include "platform/vsomeipbinding/platform_log.h"
#include "platform/vsomeipbinding/rival_check.h"

namespace ara::com::internal::vsomeip::runtime {

namespace {

/// A handler of the application that never returns must not keep the process from ending.
constexpr std::chrono::seconds kStopTimeout{3};
/// A routing host that is there registers an application within milliseconds. Without one, the stack goes on trying.
constexpr std::chrono::seconds kRegistrationTimeout{1};

/// The name that the stack's configuration knows this process by.
std::string ApplicationName() {
  const char* name = std::getenv("VSOMEIP_APPLICATION_NAME");
  return name != nullptr && *name != '\0' ? name : "tarn7_" + std::to_string(::getpid());
}

}  // namespace

StackThread& StackThread::Get() {
  static StackThread& thread = *new StackThread;
  return thread;
}

std::shared_ptr<::vsomeip::application> StackThread::Start() {
  if (auto application = Started()) {
    return application;
  }
  const std::lock_guard<std::recursive_mutex> start_lock(start_mutex_);
  if (auto application = Started()) {
    return application;  // by another thread, meanwhile
  }
  if (starting_) {
    throw std::runtime_error("The SOME/IP stack has given up while it was being started");
  }
  const struct Starting {  // ends with this call, however that ends
    explicit Starting(bool& is_starting) : flag(is_starting) { flag = true; }
    ~Starting() { flag = false; }
    bool& flag;
  } starting(starting_);
  const std::string name = ApplicationName();
  auto application = ::vsomeip::runtime::get()->create_application(name);
  if (application == nullptr || !application->init()) {
    throw std::runtime_error("The SOME/IP stack cannot be started for application '" + name + "'");
  }
  application->register_state_handler([this](::vsomeip::state_type_e state) { OnState(state); });
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    thread_ = std::thread([this, application] { Run(*application); });
    application_ = application;
    VSomeIPConnection::instance_.application_.store(&application_, std::memory_order_release);
  }
  // Only now: what exits first was there last. So the stack's own static objects, which init() has made, are still
  // there when it is stopped, and static proxies made from here on have been destroyed before.
  std::atexit([] { Get().Stop(); });
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait_for(lock, kRegistrationTimeout, [this] { return registered_ || finished_; });
  return application;
}

std::shared_ptr<::vsomeip::application> StackThread::Started() const {
  const auto* const application = VSomeIPConnection::instance_.application_.load(std::memory_order_acquire);
  return application != nullptr ? *application : nullptr;
}

void StackThread::Run(::vsomeip::application& application) {
  try {
    application.start();
  } catch (const std::exception& error) {
    PlatformLog().LogError().WithLocation("vsomeipbinding/stack_thread", __func__, __LINE__)
        << "The SOME/IP stack has failed: " << error.what();
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  finished_ = true;
  changed_.notify_all();
}

void StackThread::OnState(::vsomeip::state_type_e state) {
  const bool is_registered = state == ::vsomeip::state_type_e::ST_REGISTERED;
  if (!is_registered) {
    RivalCheck::Get().Forget();
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  registered_ = is_registered;
  changed_.notify_all();
}

bool StackThread::IsRegistered() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return registered_ && !stopped_;
}

std::shared_ptr<::vsomeip::application> StackThread::Running() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return stopped_ ? nullptr : application_;
}

void StackThread::Stop() {
  std::unique_lock<std::mutex> lock(mutex_);
  if (application_ == nullptr || stopped_) {
    return;
  }
  stopped_ = true;
  lock.unlock();
  application_->stop();  // not replaced any more; handlers that run now may want the lock
  lock.lock();
  const bool finished = changed_.wait_for(lock, kStopTimeout, [this] { return finished_; });
  lock.unlock();
  if (finished) {
    thread_.join();
    return;
  }
  PlatformLog().LogWarn().WithLocation("vsomeipbinding/stack_thread", __func__, __LINE__)
      << "The SOME/IP stack does not stop: a handler still runs";
  thread_.detach();
}

}  // namespace ara::com::internal::vsomeip::runtime
