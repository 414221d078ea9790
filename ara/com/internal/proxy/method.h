#pragma once

#include "core_types/future.h"

namespace ara::com::internal::proxy {

/// A method of a remote service. Calling it sends the request and returns the future of the answer.
template <typename Signature>
class Method;

template <typename R, typename... Args>
class Method<R(Args...)> {
 public:
  virtual ~Method() = default;

  virtual ara::core::Future<R> operator()(Args... args) = 0;
};

}  // namespace ara::com::internal::proxy
