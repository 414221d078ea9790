#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include <vsomeip/vsomeip.hpp>

namespace ara::com::internal::vsomeip::runtime {

/// The application object and the thread that it serves the network on. Never destroyed: objects that outlive the stop
/// at exit may still ask for it. All operations may be called from any thread.
class StackThread {
 public:
  static StackThread& Get();

  /// The application object, which the first call starts. Throws std::runtime_error when it cannot be started; the next
  /// call tries again. After Stop() it is the stopped one. The first call returns when the application is registered
  /// at its routing host, or after a second without one; who calls meanwhile does not wait.
  std::shared_ptr<::vsomeip::application> Start();
  /// The application object between Start() and Stop(); null before and after.
  std::shared_ptr<::vsomeip::application> Running();
  /// Whether the application is registered at its routing host, as far as is known here. False after Stop().
  bool IsRegistered();
  /// Stops the application and waits for its thread, for a limited time. Called when the process exits.
  void Stop();

 private:
  StackThread() = default;
  std::shared_ptr<::vsomeip::application> Started() const;  // whether stopped since or not; takes no lock
  void Run(::vsomeip::application& application);
  void OnState(::vsomeip::state_type_e state);

  // Guards starting_, and is held while the application is initialised. Recursive, because a stack that finds its
  // installation broken ends the process from within: objects that are destroyed then come back to here.
  std::recursive_mutex start_mutex_;
  bool starting_ = false;

  std::mutex mutex_;                                     // guards the members below; taken after start_mutex_
  std::shared_ptr<::vsomeip::application> application_;  // never changes once the connection points to it
  bool stopped_ = false;
  bool registered_ = false;
  bool finished_ = false;  // the thread has left the application
  std::condition_variable changed_;
  std::thread thread_;
};

}  // namespace ara::com::internal::vsomeip::runtime
