#pragma once

#include <cstddef>
#include <cstdint>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "core_types/optional.h"
#include "serialization/serializer.h"

namespace benchmarks {

/// Gives every member of a record a value; sequences have eight elements.
struct MemberFiller {
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, ara::core::Optional<T>& member) const {
    if constexpr (ara::com::internal::vsomeip::common::kIsSequence<T>) {
      member = T(8, static_cast<typename T::value_type>(dataId));
    } else {
      member = static_cast<T>(dataId + 1);
    }
  }
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
