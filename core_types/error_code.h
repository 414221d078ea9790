#pragma once

#include <cstdint>
#include <exception>

#include "core_types/error_domain.h"

namespace ara::core {

/// A number and the domain that gives it its meaning. A plain value.
class ErrorCode {
 public:
  using CodeType = std::int32_t;
  using SupportDataType = std::int32_t;

  /// Holds a reference to `domain`, which must have static lifetime.
  ErrorCode(CodeType value, const ErrorDomain& domain) noexcept : ErrorCode(value, 0, domain) {}
  ErrorCode(CodeType value, SupportDataType supportData, const ErrorDomain& domain) noexcept
      : value_(value), support_data_(supportData), domain_(&domain) {}

  CodeType Value() const noexcept { return value_; }
  /// A vendor-defined number that travels with the code. It takes no part in comparisons.
  SupportDataType SupportData() const noexcept { return support_data_; }
  const ErrorDomain& Domain() const noexcept { return *domain_; }

  /// The domain's text for the value.
  const char* Message() const noexcept { return domain_->Message(value_); }
  /// Throws the domain's exception, holding a copy of this code.
  [[noreturn]] void ThrowAsException() const {
    domain_->ThrowAsException(*this);
    std::terminate();  // not reached: GCC does not see that a virtual function never returns
  }

 private:
  CodeType value_;
  SupportDataType support_data_;
  const ErrorDomain* domain_;
};

inline bool operator==(const ErrorCode& left, const ErrorCode& right) noexcept {
  return left.Value() == right.Value() && left.Domain() == right.Domain();
}
inline bool operator!=(const ErrorCode& left, const ErrorCode& right) noexcept { return !(left == right); }

}  // namespace ara::core
