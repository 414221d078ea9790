#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/include/instance_identifier.h"

namespace ara::com {

/// Names one search that StartFindService began.
class FindServiceHandle {
 public:
  FindServiceHandle() noexcept = default;
  explicit FindServiceHandle(std::uint64_t id) noexcept : id_(id) {}

  std::uint64_t Id() const noexcept { return id_; }

  friend bool operator==(FindServiceHandle left, FindServiceHandle right) noexcept { return left.id_ == right.id_; }
  friend bool operator<(FindServiceHandle left, FindServiceHandle right) noexcept { return left.id_ < right.id_; }

 private:
  std::uint64_t id_ = 0;
};

template <typename Handle>
using ServiceHandleContainer = std::vector<Handle>;

template <typename Handle>
using FindServiceHandler = std::function<void(ServiceHandleContainer<Handle>, FindServiceHandle)>;

}  // namespace ara::com
