#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "platform/include/visibility.h"

namespace ara::com::internal::vsomeip::common {

using MethodHandler = std::function<void(const std::shared_ptr<::vsomeip::message>&)>;

/// A method handler that holds its object weakly: once the object is gone, a message is dropped. A platform that
/// multiplexes several handlers of one method finds out through expired() which of them is dead
/// (std::function::target).
class WeakMethodHandler {
 public:
  using Message = std::shared_ptr<::vsomeip::message>;

  /// Calls `(object->*method)(message)`.
  template <typename Object>
  WeakMethodHandler(const std::shared_ptr<Object>& object, void (Object::*method)(const Message&))
      : object_(object),
        call_([method](void* target, const Message& message) { (static_cast<Object*>(target)->*method)(message); }) {}

  bool expired() const noexcept { return object_.expired(); }

  void operator()(const Message& message) const {
    if (const auto object = object_.lock()) {
      call_(object.get(), message);
    }
  }

 private:
  std::weak_ptr<void> object_;
  std::function<void(void*, const Message&)> call_;
};

/// Registers a handler for the messages of one method of one service instance: on the client side its responses, on the
/// server side its requests. Several handlers may be registered for one method: each message goes to all of them, on a
/// thread of the stack, with no lock held. `isField` tells the server side of a field's getter (true) from the client
/// side.
ARA_PLATFORM_API void registerMethodHandler(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId,
                                            MethodHandler handler, bool isField);
/// Takes one registration back. Where several were made, a handler that holds its object weakly is removed some time
/// after that object is gone.
ARA_PLATFORM_API void unregisterMethodHandler(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t methodId,
                                              bool isField);

}  // namespace ara::com::internal::vsomeip::common
