#pragma once

#include <cstdint>

#include "ara/com/internal/proxy/field.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_event_impl.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_method_impl.h"

namespace ara::com::internal::vsomeip::proxy {

/// A remote field over SOME/IP: its notifier, and a getter, which goes first when the field is destroyed.
template <typename Descriptor, typename T>
class FieldImpl : public EventImpl<Descriptor, T>, public virtual internal::proxy::Field<T> {
 public:
  explicit FieldImpl(std::uint16_t instance) : EventImpl<Descriptor, T>(instance), getter_(instance) {}

  ara::core::Future<T> Get() override { return getter_(); }

 private:
  MethodImpl<MakeGetMethodDescriptorFrom<Descriptor>, T()> getter_;
};

/// A remote field that can be written as well.
template <typename Descriptor, typename T>
class MutableFieldImpl final : public FieldImpl<Descriptor, T>, public virtual internal::proxy::MutableField<T> {
 public:
  explicit MutableFieldImpl(std::uint16_t instance) : FieldImpl<Descriptor, T>(instance), setter_(instance) {}

  ara::core::Future<T> Set(const T& value) override { return setter_(value); }

 private:
  MethodImpl<MakeSetMethodDescriptorFrom<Descriptor>, T(const T&)> setter_;
};

}  // namespace ara::com::internal::vsomeip::proxy
