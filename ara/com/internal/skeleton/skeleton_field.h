#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

#include "ara/com/internal/skeleton/field.h"
#include "core_types/promise.h"
#include "core_types/running_calls.h"

namespace ara::com::internal::skeleton {

/// A field of an offered service: its value, which the application sets, and the handler that answers its getter. All
/// operations may be called from any thread.
template <typename T>
class SkeletonField {
 public:
  using FieldType = T;

  SkeletonField() = default;
  SkeletonField(const SkeletonField&) = delete;
  SkeletonField& operator=(const SkeletonField&) = delete;

  /// Sets the value and, while the service is offered, notifies every subscriber. Each field must be set before the
  /// service can be offered. Updates from several threads reach the subscribers in the order in which they set the
  /// value. Throws what the stack throws for a value that it cannot send (the embedded one std::length_error, above 16
  /// MiB): the field keeps the former value then.
  void Update(const T& value) { Update(T(value)); }
  /// The same without a copy, which of a map's layer takes far longer than its encoding. Where it throws, `value` stays
  /// as it is.
  void Update(T&& value) {
    T former;  // destroyed when no lock is held
    const std::lock_guard<std::mutex> lock(holder_->mutex);
    SendToBindings(value);
    former = std::exchange(holder_->value, std::move(value));
    holder_->has_value = true;
  }

  /// Sets what answers getter requests. Without one, a getter is answered with an error. The handler runs on a thread
  /// of the stack, any number of times at once, and that thread waits for its future and sends the response. What the
  /// handler throws, an error in its future, and a future that ends without a result are error responses.
  ///
  /// A future that is not ready at once keeps a thread of the stack: while such threads are few, it delays what other
  /// requests, responses and notifications they would bring. One that never becomes ready keeps its thread for ever.
  /// StopOfferService and the skeleton's destructor wait for handlers that run, not for their futures.
  void RegisterGetHandler(GetHandler<T> handler) {
    if (handler) {
      // Bindings copy what they are given. What the handler owns is there once, and goes when no lock is held.
      handler = [shared = std::make_shared<const GetHandler<T>>(std::move(handler)), calls = get_handler_calls_] {
        const ara::core::internal::RunningCalls::Scope running(*calls);
        return (*shared)();
      };
    }
    {
      const std::lock_guard<std::mutex> lock(handler_mutex_);
      handler_.swap(handler);
      ++handler_version_;
    }
    PassHandlerOn([this](const GetHandler<T>& latest) {
      const std::lock_guard<std::mutex> lock(bindings_mutex_);
      for (Field<T>* const binding : bindings_) {
        binding->RegisterGetHandler(latest);
      }
    });
  }

  /// Answers getter requests with the value as it stands.
  void ServeCurrentValue() {
    RegisterGetHandler([holder = holder_] {
      ara::core::Promise<T> promise;
      {
        const std::lock_guard<std::mutex> lock(holder->mutex);
        promise.SetResult(T(holder->value));
      }
      return promise.get_future();
    });
  }

  /// Returns when no get handler runs on another thread.
  void WaitForGetHandlers() { get_handler_calls_->WaitForOtherThreads(); }

  bool HasValue() const {
    const std::lock_guard<std::mutex> lock(holder_->mutex);
    return holder_->has_value;
  }

  /// For bindings: adds a binding's field, which is not owned, and gives it the get handler.
  void Attach(Field<T>& binding) {
    {
      const std::lock_guard<std::mutex> lock(bindings_mutex_);
      bindings_.push_back(&binding);
    }
    PassHandlerOn([&binding](GetHandler<T> latest) { binding.RegisterGetHandler(std::move(latest)); });
  }
  /// For bindings: removes a binding's field. Afterwards it is not being called.
  void Detach(Field<T>& binding) {
    const std::lock_guard<std::mutex> lock(bindings_mutex_);
    bindings_.remove(&binding);
  }
  /// For bindings: notifies the value as it stands, which must have been set, through every attached binding.
  void SendCurrentValue() {
    const std::lock_guard<std::mutex> lock(holder_->mutex);
    SendToBindings(holder_->value);
  }

 private:
  struct ValueHolder {
    bool has_value = false;
    T value;
    std::mutex
        mutex;  // guards both; held while the value is sent, so that the last value sent is the last that was set
  };

  void SendToBindings(const T& value) {
    const std::lock_guard<std::mutex> lock(bindings_mutex_);
    for (Field<T>* const binding : bindings_) {
      binding->Update(value);
    }
  }

  // Passes the handler on with no lock held, and again when another one has been registered meanwhile: who passes last
  // passes the latest.
  template <typename Pass>
  void PassHandlerOn(Pass pass) {
    std::list<GetHandler<T>> passed_on;  // kept until no binding has an older one, which would go under a lock
    for (std::uint64_t passed = 0;;) {
      {
        const std::lock_guard<std::mutex> lock(handler_mutex_);
        if (handler_version_ == passed) {
          return;
        }
        passed = handler_version_;
        passed_on.push_back(handler_);
      }
      pass(passed_on.back());
    }
  }

  std::shared_ptr<ValueHolder> holder_ = std::make_shared<ValueHolder>();

  std::list<Field<T>*> bindings_;
  std::mutex bindings_mutex_;  // guards the list, and is held while its members are called; taken last

  GetHandler<T> handler_;
  std::mutex handler_mutex_;           // guards the handler and its version
  std::uint64_t handler_version_ = 0;  // counts the handlers
  // Shared with the handlers, which may run on when the field is gone.
  const std::shared_ptr<ara::core::internal::RunningCalls> get_handler_calls_ =
      std::make_shared<ara::core::internal::RunningCalls>();
};

}  // namespace ara::com::internal::skeleton
