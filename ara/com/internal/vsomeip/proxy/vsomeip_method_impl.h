#pragma once

#include <cstdint>
#include <memory>

#include "ara/com/internal/proxy/method.h"
#include "ara/com/internal/vsomeip/proxy/method_descriptor.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_method_impl_delegate.h"
#include "platform/include/method_handler.h"

namespace ara::com::internal::vsomeip::proxy {

/// A remote method over SOME/IP. While it lives its responses are handled; one that arrives later is dropped.
template <typename Descriptor, typename Signature>
class MethodImpl;

template <typename Descriptor, typename R, typename... Args>
class MethodImpl<Descriptor, R(Args...)> final : public virtual internal::proxy::Method<R(Args...)> {
 public:
  explicit MethodImpl(std::uint16_t instance) : delegate_(std::make_shared<Delegate>(instance)), instance_(instance) {
    common::registerMethodHandler(Descriptor::service_id, instance_, Descriptor::method_id,
                                  common::WeakMethodHandler(delegate_, &Delegate::onMessage), false);
  }
  // The handler goes before the calls that it answers.
  ~MethodImpl() override {
    common::unregisterMethodHandler(Descriptor::service_id, instance_, Descriptor::method_id, false);
  }
  MethodImpl(const MethodImpl&) = delete;
  MethodImpl& operator=(const MethodImpl&) = delete;

  ara::core::Future<R> operator()(Args... args) override { return delegate_->startCall(args...); }

 private:
  using Delegate = MethodImplDelegate<Descriptor, R>;

  std::shared_ptr<Delegate> delegate_;
  std::uint16_t instance_;
};

}  // namespace ara::com::internal::vsomeip::proxy
