#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// Brings to the loop what other threads report of service instances, each of which is there or not. A change is told
/// at once, the next one of that instance no sooner than an interval later, and then as it stands: however often
/// something changes, little waits and little is told, and what was told last is how it is.
class InstanceChanges {
 public:
  using Instance = std::pair<const Interface*, std::uint16_t>;
  /// Runs on the loop. At first, an instance is not there.
  using Changed = std::function<void(const Instance& instance, bool found)>;

  static constexpr std::chrono::seconds kInterval{1};

  /// The loop lives longer, and is not run any more after this is gone.
  InstanceChanges(Loop& loop, Changed changed, Loop::Clock::duration interval = kInterval)
      : loop_(loop), changed_(std::move(changed)), interval_(interval) {}
  InstanceChanges(const InstanceChanges&) = delete;
  InstanceChanges& operator=(const InstanceChanges&) = delete;

  /// From any thread.
  void Report(const Instance& instance, bool found);

 private:
  struct State {
    bool found = false;  // as reported last
    bool told = false;
    bool has_job = false;  // in the loop, or waits for its interval to end
  };

  void Tell(const Instance& instance);

  Loop& loop_;
  const Changed changed_;
  const Loop::Clock::duration interval_;
  std::mutex mutex_;  // guards states_
  std::map<Instance, State> states_;
};

}  // namespace tarn7::tool
