#pragma once

#include "core_types/exception.h"

namespace ara::core {

enum class future_errc : ErrorCode::CodeType {
  broken_promise = 101,
  future_already_retrieved = 102,
  promise_already_satisfied = 103,
  no_state = 104,
};

class FutureException : public Exception {
 public:
  using Exception::Exception;
};

class FutureErrorDomain final : public ErrorDomain {
 public:
  static constexpr IdType kId = 0x8000000000000013;

  constexpr FutureErrorDomain() noexcept : ErrorDomain(kId) {}

  const char* Name() const noexcept override { return "Future"; }

  const char* Message(int code) const noexcept override {
    switch (static_cast<future_errc>(code)) {
      case future_errc::broken_promise:
        return "broken promise";
      case future_errc::future_already_retrieved:
        return "future already retrieved";
      case future_errc::promise_already_satisfied:
        return "promise already satisfied";
      case future_errc::no_state:
        return "no state associated with this future";
    }
    return "unknown future error";
  }

  [[noreturn]] void ThrowAsException(const ErrorCode& code) const override { throw FutureException(code); }
};

inline const ErrorDomain& GetFutureErrorDomain() noexcept {
  static const FutureErrorDomain domain;
  return domain;
}

inline ErrorCode MakeErrorCode(future_errc code, ErrorCode::SupportDataType supportData = 0) noexcept {
  return {static_cast<ErrorCode::CodeType>(code), supportData, GetFutureErrorDomain()};
}

}  // namespace ara::core
