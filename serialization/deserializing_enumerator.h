#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "core_types/optional.h"
#include "serialization/scalar_deserializer.h"

namespace ara::com::internal::vsomeip::common {

/// A cursor over the bytes of one member's value, which fills one optional member after another.
class DeserializingEnumerator {
 public:
  DeserializingEnumerator(const unsigned char* data, std::uint64_t size) noexcept : data_(data), size_(size) {}

  /// Reads sizeof(T) big-endian bytes at the cursor and advances it; the member becomes present and loses any earlier
  /// value. Throws std::runtime_error "Insufficient arguments from remote end" when too few bytes are left.
  template <typename T>
  void operator()(ara::core::Optional<T>& member) {
    if (size_ - offset_ < sizeof(T)) {
      throw std::runtime_error("Insufficient arguments from remote end");
    }
    Deserializer<T>(data_ + offset_, size_ - offset_).readInto(member.emplace());
    offset_ += sizeof(T);
  }

 private:
  const unsigned char* data_;
  std::uint64_t size_;
  std::uint64_t offset_ = 0;  // never beyond size_
};

}  // namespace ara::com::internal::vsomeip::common
