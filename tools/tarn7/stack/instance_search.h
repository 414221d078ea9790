#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tools/tarn7/client/instance_changes.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface.h"
#include "tools/tarn7/stack/stack_application.h"

namespace tarn7::tool {

/// An instance of an interface that came or went.
struct InstanceChange {
  const Interface& interface;
  std::uint16_t instance;
  bool found;
  /// Whether it came in the major version that the library has: no other is ever used.
  bool has_right_version;
};

/// Follows which instances of some interfaces are offered, in whatever version. Used from the loop's thread.
class InstanceSearch {
 public:
  /// Runs on the loop when an instance has come or gone, as InstanceChanges does.
  using Changed = std::function<void(const InstanceChange&)>;

  /// The loop must outlive the search. Throws std::runtime_error when the stack cannot be started.
  InstanceSearch(Loop& loop, const std::vector<const Interface*>& interfaces, Changed changed);
  InstanceSearch(const InstanceSearch&) = delete;
  InstanceSearch& operator=(const InstanceSearch&) = delete;

 private:
  InstanceChanges changes_;
  StackApplication application_;  // last: its handlers are gone before anything else here is
};

}  // namespace tarn7::tool
