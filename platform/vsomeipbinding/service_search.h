#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/include/instance_identifier.h"

namespace ara::com::internal::vsomeip::runtime {

/// One search that the application has begun: calls its handler with each new list of instances, one call at a time.
class ServiceSearch {
 public:
  using Handler = std::function<void(InstanceIdentifierContainer)>;

  ServiceSearch(InstanceIdentifier wanted, Handler handler);

  const InstanceIdentifier& Wanted() const noexcept { return wanted_; }

  /// Calls the handler if `present`, which is called when it is this call's turn, yields another list than the last
  /// time. Called on a thread of the stack, without a lock.
  void Update(const std::function<InstanceIdentifierContainer()>& present);
  /// Afterwards the handler is not running, unless it is the handler that calls, and is never called again.
  void Stop();

 private:
  const InstanceIdentifier wanted_;
  const Handler handler_;

  std::mutex mutex_;  // guards the members below
  std::condition_variable has_returned_;
  std::thread::id running_;  // the thread that is in the handler or about to enter it
  bool stopped_ = false;
  InstanceIdentifierContainer last_;
};

}  // namespace ara::com::internal::vsomeip::runtime
