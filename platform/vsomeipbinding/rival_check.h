#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

namespace ara::com::internal::vsomeip::runtime {

/// Warns a process that offers an instance which another process of the machine offers already. `vsomeip3` refuses the
/// later offer with a line in its routing host's log alone; the process that made it would wait for clients in vain.
/// Two processes that offer at the same moment are not told. All operations may be called from any thread.
class RivalCheck {
 public:
  static RivalCheck& Get();

  /// To be called before an instance is offered, with a registered application: the stack answers with what is offered
  /// up to then. Nobody waits; the warning comes from a thread of the stack.
  void Ask(::vsomeip::application& application, std::uint16_t service, std::uint16_t instance);
  /// To be called when the application is not registered any more: what was asked stays without an answer.
  void Forget();

 private:
  using Instance = std::pair<::vsomeip::service_t, ::vsomeip::instance_t>;

  RivalCheck() = default;
  void OnAnswer(const std::vector<Instance>& offered);

  std::mutex mutex_;  // guards asked_, whose order is that of the questions
  std::deque<Instance> asked_;
};

}  // namespace ara::com::internal::vsomeip::runtime
