#pragma once

#include "core_types/exception.h"

namespace ara::com {

enum class ComErrc : ara::core::ErrorCode::CodeType {
  kServiceNotAvailable = 1,
  kMaxSamplesExceeded = 2,
  kNetworkBindingFailure = 3,
};

class ComErrorDomainException : public ara::core::Exception {
 public:
  using Exception::Exception;
};

class ComErrorDomain final : public ara::core::ErrorDomain {
 public:
  static constexpr IdType kId = 0x8000000000001267;

  constexpr ComErrorDomain() noexcept : ErrorDomain(kId) {}

  const char* Name() const noexcept override { return "Com"; }

  const char* Message(int code) const noexcept override {
    switch (static_cast<ComErrc>(code)) {
      case ComErrc::kServiceNotAvailable:
        return "Service is not available.";
      case ComErrc::kMaxSamplesExceeded:
        return "Application holds more SamplePtrs than commited in Subscribe().";
      case ComErrc::kNetworkBindingFailure:
        return "Local failure has been detected by the network binding.";
    }
    return "Unknown error";
  }

  [[noreturn]] void ThrowAsException(const ara::core::ErrorCode& code) const override {
    throw ComErrorDomainException(code);
  }
};

inline const ara::core::ErrorDomain& GetComErrorDomain() noexcept {
  static const ComErrorDomain domain;
  return domain;
}

inline ara::core::ErrorCode MakeErrorCode(ComErrc code,
                                          ara::core::ErrorCode::SupportDataType supportData = 0) noexcept {
  return {static_cast<ara::core::ErrorCode::CodeType>(code), supportData, GetComErrorDomain()};
}

}  // namespace ara::com
