#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "core_types/optional.h"
#include "serialization/wire_type.h"

namespace ara::com::internal::vsomeip::common {

/// The number of bytes that a value takes on the wire, its own length field included. Shares the member list with the
/// serializer. Of a value that takes more than `limit` bytes, the answer is some number above `limit`, found without a
/// walk through all of it.
template <typename T>
std::size_t SerializedSize(const T& value, std::size_t limit = std::numeric_limits<std::size_t>::max());

namespace detail {
struct MemberSizeEnumerator {
  std::size_t limit;
  std::size_t size = 0;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) {
    if (member) {
      if constexpr (kIsScalar<T>) {
        // Its size needs no look at it, but the serializer will need it next; and memory that is asked for in the order
        // of its addresses comes faster than with gaps.
        __builtin_prefetch(&*member);
      }
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t, const char*, const T& member) {
    size += kTagSize + SerializedSize(member, limit);
  }
};
}  // namespace detail

template <typename T>
std::size_t SerializedSize(const T& value, std::size_t limit) {
  if constexpr (kIsScalar<T>) {
    return sizeof(T);
  } else if constexpr (kIsString<T> || kIsByteArray<T>) {
    return kLengthFieldSize + value.size();
  } else if constexpr (kIsSequence<T>) {
    using Element = typename T::value_type;
    std::size_t size = kLengthFieldSize;
    if constexpr (kIsScalar<Element>) {
      size += value.size() * sizeof(Element);
    } else {
      for (auto element = value.begin(); element != value.end() && size <= limit; ++element) {
        size += SerializedSize(*element, limit);
      }
    }
    return size;
  } else {
    detail::MemberSizeEnumerator members{limit};
    T::enumerate(value, members);
    return kLengthFieldSize + members.size;
  }
}

}  // namespace ara::com::internal::vsomeip::common
