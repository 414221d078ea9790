#include "platform/vsomeipbinding/service_search.h"

#include <utility>

namespace ara::com::internal::vsomeip::runtime {

ServiceSearch::ServiceSearch(InstanceIdentifier wanted, Handler handler)
    : wanted_(std::move(wanted)), handler_(std::move(handler)) {}

void ServiceSearch::Update(const std::function<InstanceIdentifierContainer()>& present) {
  std::unique_lock<std::mutex> lock(mutex_);
  has_returned_.wait(lock, [this] { return running_ == std::thread::id(); });
  if (stopped_) {
    return;
  }
  InstanceIdentifierContainer instances = present();
  if (instances == last_) {
    return;
  }
  last_ = instances;
  running_ = std::this_thread::get_id();
  lock.unlock();

  struct Return {  // also when the handler throws: the stack deals with that
    ServiceSearch& search;
    ~Return() {
      const std::lock_guard<std::mutex> guard(search.mutex_);
      search.running_ = std::thread::id();
      search.has_returned_.notify_all();
    }
  } const on_return{*this};
  handler_(std::move(instances));
}

void ServiceSearch::Stop() {
  std::unique_lock<std::mutex> lock(mutex_);
  stopped_ = true;
  has_returned_.wait(lock, [this] { return running_ == std::thread::id() || running_ == std::this_thread::get_id(); });
}

}  // namespace ara::com::internal::vsomeip::runtime
