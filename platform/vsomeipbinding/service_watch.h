#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "platform/vsomeipbinding/service_search.h"
#include "registry/service_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

/// Knows the instances of one service that are offered in a fitting version. Stands until the process ends. All
/// operations may be called from any thread.
class ServiceWatch {
 public:
  /// Begins to watch. Throws std::runtime_error when the stack cannot be started.
  explicit ServiceWatch(const VSomeIPServiceMapping::Mapping& mapping);
  ~ServiceWatch() = delete;  // the stack holds a pointer to it

  /// The wanted instances that are offered. While the watch is so young that discovery may not have answered yet, it
  /// waits for the first of them.
  InstanceIdentifierContainer Find(const InstanceIdentifier& wanted);

  void AddSearch(std::uint64_t id, const InstanceIdentifier& wanted, ServiceSearch::Handler handler);
  /// Null when there is no such search.
  std::shared_ptr<ServiceSearch> TakeSearch(std::uint64_t id);

 private:
  void OnAvailability(std::uint16_t instance, bool available);
  void UpdateSearches();
  void UpdateNewcomers();
  void Update(const std::vector<std::shared_ptr<ServiceSearch>>& searches);
  bool Fits(std::uint16_t instance) const;
  InstanceIdentifierContainer Present(const InstanceIdentifier& wanted);
  InstanceIdentifierContainer PresentLocked(const InstanceIdentifier& wanted) const;

  const VSomeIPServiceMapping::Mapping& mapping_;
  const std::shared_ptr<::vsomeip::application> application_;
  const std::chrono::steady_clock::time_point answered_at_the_latest_;

  std::mutex mutex_;  // guards the members below; not held while anything else is called
  std::condition_variable has_changed_;
  std::set<std::uint16_t> instances_;
  std::map<std::uint64_t, std::shared_ptr<ServiceSearch>> searches_;
  std::vector<std::shared_ptr<ServiceSearch>> newcomers_;  // of the searches, those that have not been told anything
};

}  // namespace ara::com::internal::vsomeip::runtime
