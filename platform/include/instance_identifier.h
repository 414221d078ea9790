#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ara::com {

/// Names one instance of a service towards the application. What the text means is the binding's: for SOME/IP it is the
/// 16-bit instance id, decimal ("1") or hexadecimal ("0x0001").
class InstanceIdentifier {
 public:
  InstanceIdentifier(std::string_view value) : value_(value) {}
  InstanceIdentifier(const char* value) : value_(value) {}
  InstanceIdentifier(std::string value) noexcept : value_(std::move(value)) {}

  /// Stands for any instance where services are searched for.
  static InstanceIdentifier Any() { return InstanceIdentifier("ANY"); }

  const std::string& ToString() const noexcept { return value_; }

  friend bool operator==(const InstanceIdentifier& left, const InstanceIdentifier& right) noexcept {
    return left.value_ == right.value_;
  }
  friend bool operator!=(const InstanceIdentifier& left, const InstanceIdentifier& right) noexcept {
    return !(left == right);
  }
  friend bool operator<(const InstanceIdentifier& left, const InstanceIdentifier& right) noexcept {
    return left.value_ < right.value_;
  }

 private:
  std::string value_;
};

using InstanceIdentifierContainer = std::vector<InstanceIdentifier>;

}  // namespace ara::com
