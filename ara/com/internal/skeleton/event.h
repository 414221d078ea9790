#pragma once

#include <memory>

namespace ara::com::internal::skeleton {

/// A binding's side of an offered event.
template <typename T>
class Event {
 public:
  virtual ~Event() = default;

  virtual void Send(const T& value) = 0;
  /// A new value to fill in and send.
  virtual std::unique_ptr<T> Allocate() = 0;
  virtual void Send(std::unique_ptr<T> sample) = 0;
};

}  // namespace ara::com::internal::skeleton
