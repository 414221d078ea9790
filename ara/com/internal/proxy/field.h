#pragma once

#include "ara/com/internal/proxy/event.h"
#include "core_types/future.h"

namespace ara::com::internal::proxy {

/// A field of a remote service: a value that can be read, and followed like an event. The first sample after a
/// subscription is the value as it stands.
template <typename T>
class Field : public virtual Event<T> {
 public:
  using FieldType = T;

  /// Asks the provider for the value. The future yields it, or the provider's error, or ComErrc::kNetworkBindingFailure
  /// when the answer makes no sense. It stays open while the provider does not answer: bound the wait with wait_for().
  virtual ara::core::Future<T> Get() = 0;
};

/// A field that can be written as well.
template <typename T>
class MutableField : public virtual Field<T> {
 public:
  /// Asks the provider to set the value. The future yields the value that the provider reports back.
  virtual ara::core::Future<T> Set(const T& value) = 0;
};

}  // namespace ara::com::internal::proxy
