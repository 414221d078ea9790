#pragma once

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <utility>

#include "ara/com/internal/skeleton/dispatcher_base.h"
#include "ara/com/internal/skeleton/service_base.h"
#include "ara/com/method_call_processing_mode.h"
#include "core_types/promise.h"
#include "core_types/running_calls.h"
#include "platform/include/instance_identifier.h"

namespace ara::com::internal::skeleton {

/// What a skeleton is whatever its interface and binding: the instances that it is offered as, the bindings that serve
/// it, the way its method calls are processed. All operations may be called from any thread.
class ServiceImplBase : public DispatcherBase<ServiceBase>, public ServiceBase {
 public:
  /// Stores the mode and hands it to every attached binding. A binding that leaves kPoll runs the calls that wait.
  virtual void SetMethodCallProcessingMode(MethodCallProcessingMode mode) {
    mode_ = mode;
    ForEachBinding([mode](ServiceImplBase& binding) {
      binding.SetMethodCallProcessingMode(mode);
      return true;
    });
  }

  /// In mode kPoll: runs one waiting method call of the first binding that has one, on this thread. The future is
  /// ready: true when a call was run. In another mode an attached binding throws IllegalStateException.
  virtual ara::core::Future<bool> ProcessNextMethodCall() {
    bool processed = false;
    ForEachBinding([&processed](ServiceImplBase& binding) {
      processed = binding.ProcessNextMethodCall().GetResult().ValueOrThrow();
      return !processed;
    });
    ara::core::Promise<bool> promise;
    promise.SetResult(bool{processed});
    return promise.get_future();
  }

  /// Removes a binding. Afterwards it is not being called, unless it is such a call that detaches it.
  void Detach(ServiceImplBase& binding) {
    DispatcherBase::Detach(binding);
    binding_calls_.WaitForOtherThreads();
  }

  const InstanceIdentifierContainer& GetInstanceIdentifiers() const noexcept { return instances_; }
  MethodCallProcessingMode GetMethodCallProcessingMode() const noexcept { return mode_; }

 protected:
  /// Throws std::invalid_argument when there is no instance.
  explicit ServiceImplBase(InstanceIdentifierContainer instances) : instances_(std::move(instances)) {
    if (instances_.empty()) {
      throw std::invalid_argument("Unable to create service, instance identifier container is empty");
    }
  }

 private:
  /// Calls `call` with each attached binding, in order and with no lock held, until it returns false.
  template <typename Call>
  void ForEachBinding(Call call) {
    const ara::core::internal::RunningCalls::Scope running(binding_calls_);
    const auto bindings = AttachedBindings();
    static_cast<void>(
        std::all_of(bindings.begin(), bindings.end(), [&](ServiceImplBase* binding) { return call(*binding); }));
  }

  // The order of the first two is fixed, after that of the base.
  const InstanceIdentifierContainer instances_;
  std::atomic<MethodCallProcessingMode> mode_{MethodCallProcessingMode::kEvent};
  ara::core::internal::RunningCalls binding_calls_;
};

}  // namespace ara::com::internal::skeleton
