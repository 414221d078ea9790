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

/// The field that a descriptor of the library describes. `ProxyBase` is its interface's proxy base.
template <typename ProxyBase, typename Descriptor>
class TypedField final : public Field {
 public:
  TypedField() : Field(Descriptor::name, MakeIdentifiers(), DescribeType<Value>()) {}

  Json Decode(const unsigned char* data, std::size_t size) const override {
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
    auto* const base = dynamic_cast<ProxyBase*>(binding.get());
    if (base == nullptr) {
      throw std::logic_error("the platform made a proxy of another interface");
    }
    auto& field = (base->*Descriptor::accessor)();
    return std::make_unique<ProxyFieldClient<std::remove_reference_t<decltype(field)>>>(std::move(binding), field);
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
