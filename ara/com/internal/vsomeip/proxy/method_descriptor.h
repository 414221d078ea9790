#pragma once

#include <cstdint>

namespace ara::com::internal::vsomeip::proxy {

/// A field's getter, as a method.
template <typename FieldDescriptor>
struct MakeGetMethodDescriptorFrom {
  static constexpr std::uint16_t service_id = FieldDescriptor::Service::service_id;
  static constexpr std::uint16_t method_id = FieldDescriptor::getter_method_id;
  static constexpr std::uint8_t interface_version = FieldDescriptor::Service::major_version;
};

/// A field's setter, as a method.
template <typename FieldDescriptor>
struct MakeSetMethodDescriptorFrom {
  static_assert(FieldDescriptor::is_mutable, "this field has no setter: only a mutable field can be written");

  static constexpr std::uint16_t service_id = FieldDescriptor::Service::service_id;
  static constexpr std::uint16_t method_id = FieldDescriptor::setter_method_id;
  static constexpr std::uint8_t interface_version = FieldDescriptor::Service::major_version;
};

}  // namespace ara::com::internal::vsomeip::proxy
