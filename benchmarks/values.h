#pragma once

#include <cstddef>
#include <cstdint>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "core_types/optional.h"
#include "serialization/serializer.h"

namespace benchmarks {

/// Gives every member of a record a value, down to the leaves of its tree.
class MemberFiller {
 public:
  explicit MemberFiller(std::size_t elements = 8) noexcept : elements_(elements) {}

  template <typename T>
  void operator()(std::uint16_t dataId, const char*, ara::core::Optional<T>& member) const {
    Fill(dataId, member.emplace());
  }

 private:
  template <typename T>
  void Fill(std::uint16_t dataId, T& value) const {
    namespace common = ara::com::internal::vsomeip::common;
    if constexpr (common::kIsScalar<T>) {
      value = static_cast<T>(dataId + 1);
    } else if constexpr (common::kIsString<T> || common::kIsByteArray<T>) {
      value = T{'m', 'a', 'p'};
    } else if constexpr (common::kIsSequence<T>) {
      value.resize(elements_);
      for (auto& element : value) {
        Fill(dataId, element);
      }
    } else {
      T::enumerate(value, *this);
    }
  }

  std::size_t elements_;  // of every sequence
};

/// A field's value: the given number of records with all their members.
template <typename Field>
typename Field::ValueType FilledValue(std::size_t records) {
  typename Field::ValueType::value_type record;
  decltype(record)::enumerate(record, MemberFiller{});
  return typename Field::ValueType(records, record);
}

/// The bytes of such a value on the wire.
template <typename Field>
ara::com::internal::vsomeip::common::ByteVector FilledPayload(std::size_t records) {
  using ara::com::internal::vsomeip::common::SequenceContainerSerializer;
  ara::com::internal::vsomeip::common::ByteVector bytes;
  SequenceContainerSerializer<typename Field::ValueType>(FilledValue<Field>(records)).pushbackTo(bytes);
  return bytes;
}

}  // namespace benchmarks
