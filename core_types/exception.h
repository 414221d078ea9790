#pragma once

#include <exception>

#include "core_types/error_code.h"

namespace ara::core {

/// Base of the exceptions that carry an ErrorCode. `what()` is std::exception's: ask the code for its Message().
class Exception : public std::exception {
 public:
  explicit Exception(const ErrorCode& error) noexcept : error_(error) {}

  const ErrorCode& Error() const noexcept { return error_; }

 private:
  ErrorCode error_;
};

}  // namespace ara::core
