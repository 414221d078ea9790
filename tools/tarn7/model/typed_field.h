#pragma once

#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tools/tarn7/client/proxy_field_client.h"
#include "tools/tarn7/model/field.h"
#include "tools/tarn7/values/from_json.h"
#include "tools/tarn7/values/to_json.h"

namespace tarn7::tool {

template <typename InterfaceDescriptor, typename = void>
inline constexpr bool kIsProvided = false;
template <typename InterfaceDescriptor>
inline constexpr bool kIsProvided<InterfaceDescriptor, std::void_t<typename InterfaceDescriptor::Skeleton>> = true;

/// The field that a descriptor of the library describes. `InterfaceDescriptor` is its interface's.
template <typename InterfaceDescriptor, typename Descriptor>
class TypedField final : public Field {
 public:
  TypedField() : Field(Descriptor::name, MakeIdentifiers(), DescribeType<Value>()) {}

  PayloadNotes Check(const unsigned char* data, std::size_t size) const override {
    return CheckPayload<Value>(data, size);
  }

  Json Decode(const unsigned char* data, std::size_t size) const override {
    Check(data, size);  // the decoder may end the process where a number is too short
    return ToJson(ara::com::internal::vsomeip::common::DeserializeFieldValue<Value>(data, size));
  }

  std::vector<unsigned char> Encode(const Json& value) const override {
    namespace common = ara::com::internal::vsomeip::common;
    common::ByteVector bytes;
    common::SequenceContainerSerializer<Value>(FromJson<Value>(value)).pushbackTo(bytes);
    return bytes;
  }

  std::unique_ptr<FieldClient> Connect(
      std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding) const override {
    if constexpr (kIsProvided<InterfaceDescriptor>) {
      throw std::logic_error("the library has no proxy of an interface that it provides");
    } else {
      auto* const base = dynamic_cast<typename InterfaceDescriptor::ProxyBase*>(binding.get());
      if (base == nullptr) {
        throw std::logic_error("the platform made a proxy of another interface");
      }
      auto& field = (base->*Descriptor::accessor)();
      return std::make_unique<ProxyFieldClient<std::remove_reference_t<decltype(field)>>>(std::move(binding), field);
    }
  }

 private:
  using Value = typename Descriptor::ValueType;

  static constexpr Identifiers MakeIdentifiers() {
    Identifiers ids{Descriptor::getter_method_id, 0, Descriptor::event_id, Descriptor::event_groups[0]};
    if constexpr (Descriptor::is_mutable) {
      ids.setter = Descriptor::setter_method_id;
    }
    return ids;
  }
};

}  // namespace tarn7::tool
