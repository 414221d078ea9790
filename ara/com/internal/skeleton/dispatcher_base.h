#pragma once

#include <algorithm>
#include <list>
#include <mutex>
#include <vector>

#include "core_types/running_calls.h"

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
  /// Afterwards the binding is not being called, unless it is such a call that detaches it.
  void Detach(ServiceImplBase& binding) {
    {
      const std::lock_guard<std::mutex> lock(dispatcher_mutex_);
      bindings_.remove(&binding);
    }
    running_.WaitForOtherThreads();
  }

 protected:
  DispatcherBase() = default;
  ~DispatcherBase() = default;

  /// Calls `call` with each attached binding, in order and with no lock held, until it returns false.
  template <typename Call>
  void ForEachBinding(Call call) {
    const ara::core::internal::RunningCalls::Scope running(running_);
    std::vector<ServiceImplBase*> bindings;
    {
      const std::lock_guard<std::mutex> lock(dispatcher_mutex_);
      bindings.assign(bindings_.begin(), bindings_.end());
    }
    static_cast<void>(
        std::all_of(bindings.begin(), bindings.end(), [&](ServiceImplBase* binding) { return call(*binding); }));
  }

 private:
  std::list<ServiceImplBase*> bindings_;
  std::mutex dispatcher_mutex_;  // guards the list
  ara::core::internal::RunningCalls running_;
};

}  // namespace ara::com::internal::skeleton
