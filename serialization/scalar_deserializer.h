#pragma once

#include <cstdint>
#include <stdexcept>
#include <type_traits>

#include "serialization/byte_order.h"
#include "serialization/wire_type.h"

namespace ara::com::internal::vsomeip::common {

inline constexpr const char* kScalarTooShort = "Deserialization of trivially copyable type failed, insufficient data!";

/// Reads one value of type T from the start of a byte range. The bytes belong to the caller and must outlive the call.
template <typename T, typename Enable = void>
class Deserializer;

/// Scalars: sizeof(T) big-endian bytes. A bool is the raw byte, not normalised to 0 or 1.
template <typename T>
class Deserializer<T, std::enable_if_t<kIsScalar<T>>> {
 public:
  Deserializer(const unsigned char* data, std::uint64_t size) noexcept : data_(data), size_(size) {}

  /// Throws std::runtime_error when fewer than sizeof(T) bytes are there.
  T getValue() const {
    T value;
    readInto(value);
    return value;
  }
  void readInto(T& target) const {
    if (size_ < sizeof(T)) {
      throw std::runtime_error(kScalarTooShort);
    }
    LoadBigEndian(data_, target);
  }

 private:
  const unsigned char* data_;
  std::uint64_t size_;
};

}  // namespace ara::com::internal::vsomeip::common
