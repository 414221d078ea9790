#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/client/instance_changes.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/interface.h"

namespace tarn7::tool {

/// Access to one instance of an interface, and whether it is offered: followed for as long as this lives. Used from the
/// loop's thread. Lives longer than the field clients that are from it, and not as long as the loop.
class ServiceClient {
 public:
  /// Runs on the loop after a change, as InstanceChanges does; may be empty.
  using Changed = std::function<void(bool found)>;

  virtual ~ServiceClient() = default;
  ServiceClient(const ServiceClient&) = delete;
  ServiceClient& operator=(const ServiceClient&) = delete;

  /// `field` is one of the interface's. The service need not be offered yet.
  virtual std::unique_ptr<FieldClient> Connect(const Field& field) = 0;

  bool IsFound() const noexcept { return found_; }
  /// Runs the loop until the service is there. Throws CommandError (kUnavailable) when it is not in time.
  void Wait(Loop::TimePoint deadline);

 protected:
  ServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed);

  /// From any thread.
  void ReportFound(bool found) { changes_.Report(instance_, found); }

 private:
  Loop& loop_;
  const InstanceChanges::Instance instance_;
  bool found_ = false;
  InstanceChanges changes_;
};

}  // namespace tarn7::tool
