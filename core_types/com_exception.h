#pragma once

#include <stdexcept>

namespace ara::com {

/// Misuse of the communication interface. Carries only a text, unlike the exceptions of ara::core.
class Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An operation was called in a state that does not allow it.
class IllegalStateException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace ara::com
