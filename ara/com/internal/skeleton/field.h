#pragma once

#include <functional>

#include "core_types/future.h"

namespace ara::com::internal::skeleton {

/// Answers a getter: called for each request, on a thread of the SOME/IP stack, which waits for the future.
template <typename T>
using GetHandler = std::function<ara::core::Future<T, ara::core::ErrorCode>()>;

/// A binding's side of an offered field.
template <typename T>
class Field {
 public:
  virtual ~Field() = default;

  virtual void RegisterGetHandler(GetHandler<T> handler) = 0;
  /// Notifies the subscribers of a new value.
  virtual void Update(const T& value) = 0;
};

}  // namespace ara::com::internal::skeleton
