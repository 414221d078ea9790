#pragma once

#include <memory>
#include <string>
#include <thread>

#include <vsomeip/vsomeip.hpp>

namespace tarn7::tool {

/// A node of its own on the SOME/IP network, straight on the stack: shares nothing with the library's binding. Serves
/// the network on a thread of its own while it lives.
class StackApplication {
 public:
  /// Returns once the stack is ready. Throws std::runtime_error when it cannot be started.
  explicit StackApplication(const std::string& name);
  /// Takes back everything that was offered or requested. No handler begins to run afterwards.
  ~StackApplication();
  StackApplication(const StackApplication&) = delete;
  StackApplication& operator=(const StackApplication&) = delete;

  vsomeip::application* operator->() const noexcept { return application_.get(); }

  static std::shared_ptr<vsomeip::runtime> Runtime() { return vsomeip::runtime::get(); }

 private:
  void Stop();

  std::shared_ptr<vsomeip::application> application_;
  std::thread thread_;
};

}  // namespace tarn7::tool
