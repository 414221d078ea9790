#pragma once

#include "core_types/exception.h"

namespace ara::core {

enum class CoreErrc : ErrorCode::CodeType {
  kInvalidArgument = 22,
  kInvalidMetaModelShortname = 137,
  kInvalidMetaModelPath = 138,
};

class CoreException : public Exception {
 public:
  using Exception::Exception;
};

class CoreErrorDomain final : public ErrorDomain {
 public:
  static constexpr IdType kId = 0x8000000000000014;

  constexpr CoreErrorDomain() noexcept : ErrorDomain(kId) {}

  const char* Name() const noexcept override { return "Core"; }

  const char* Message(int code) const noexcept override {
    switch (static_cast<CoreErrc>(code)) {
      case CoreErrc::kInvalidArgument:
        return "Invalid argument";
      case CoreErrc::kInvalidMetaModelShortname:
        return "Invalid meta model shortname";
      case CoreErrc::kInvalidMetaModelPath:
        return "Invalid meta model path";
    }
    return "Unknown error";
  }

  [[noreturn]] void ThrowAsException(const ErrorCode& code) const override { throw CoreException(code); }
};

inline const ErrorDomain& GetCoreErrorDomain() noexcept {
  static const CoreErrorDomain domain;
  return domain;
}

inline ErrorCode MakeErrorCode(CoreErrc code, ErrorCode::SupportDataType supportData = 0) noexcept {
  return {static_cast<ErrorCode::CodeType>(code), supportData, GetCoreErrorDomain()};
}

}  // namespace ara::core
