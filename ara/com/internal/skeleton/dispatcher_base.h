#pragma once

#include <list>
#include <mutex>
#include <vector>

namespace ara::com::internal::skeleton {

class ServiceImplBase;

/// The bindings that are attached to a service: not owned, in the order in which they came.
template <typename Service>
class DispatcherBase {
 public:
  void Attach(ServiceImplBase& binding) {
    const std::lock_guard<std::mutex> lock(dispatcher_mutex_);
    bindings_.push_back(&binding);
  }
  void Detach(ServiceImplBase& binding) {
    const std::lock_guard<std::mutex> lock(dispatcher_mutex_);
    bindings_.remove(&binding);
  }

 protected:
  DispatcherBase() = default;
  ~DispatcherBase() = default;

  std::vector<ServiceImplBase*> AttachedBindings() {
    const std::lock_guard<std::mutex> lock(dispatcher_mutex_);
    return {bindings_.begin(), bindings_.end()};
  }

 private:
  // The order of the members is fixed.
  std::list<ServiceImplBase*> bindings_;
  std::mutex dispatcher_mutex_;  // guards the list
};

}  // namespace ara::com::internal::skeleton
