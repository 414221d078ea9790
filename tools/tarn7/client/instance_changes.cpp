#include "tools/tarn7/client/instance_changes.h"

namespace tarn7::tool {

void InstanceChanges::Report(const Instance& instance, bool found) {
  const std::lock_guard<std::mutex> lock(mutex_);
  State& state = states_[instance];
  state.found = found;
  if (!state.has_job) {
    state.has_job = true;
    loop_.Post([this, instance] { Tell(instance); });
  }
}

void InstanceChanges::Tell(const Instance& instance) {
  bool found = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto state = states_.find(instance);
    found = state->second.found;
    if (found == state->second.told) {
      if (found) {
        state->second.has_job = false;
      } else {
        states_.erase(state);
      }
      return;
    }
    state->second.told = found;
  }
  loop_.PostAfter(interval_, [this, instance] { Tell(instance); });
  changed_(instance, found);
}

}  // namespace tarn7::tool
