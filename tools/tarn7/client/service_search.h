#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "platform/include/find_service.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/model/field.h"

namespace tarn7::tool {

/// Follows, for as long as it lives, whether one instance of an interface is offered. Used from the loop's thread.
class ServiceSearch {
 public:
  /// `changed` runs on the loop after each change; it may be empty.
  ServiceSearch(Loop& loop, const Interface& interface, std::uint16_t instance, std::function<void(bool)> changed = {});
  ~ServiceSearch();
  ServiceSearch(const ServiceSearch&) = delete;
  ServiceSearch& operator=(const ServiceSearch&) = delete;

  bool IsFound() const noexcept { return found_; }
  /// "energysystem, instance 1".
  const std::string& Name() const noexcept { return name_; }
  /// Runs the loop until the service is there. Throws CommandError (kUnavailable) when it is not in time.
  void Wait(Loop::TimePoint deadline);

 private:
  Loop& loop_;
  std::string name_;
  std::function<void(bool)> changed_;
  bool found_ = false;
  ara::com::FindServiceHandle search_;
};

/// A new proxy binding of one instance, whether it is offered or not.
std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> MakeProxy(const Interface& interface,
                                                                       std::uint16_t instance);

}  // namespace tarn7::tool
