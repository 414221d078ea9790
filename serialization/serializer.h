#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "core_types/optional.h"
#include "serialization/byte_order.h"
#include "serialization/serialized_size.h"
#include "serialization/wire_type.h"

namespace ara::com::internal::vsomeip::common {

using ByteVector = std::vector<unsigned char>;

/// Appends one value of type T to a byte vector that the caller owns: a scalar big-endian, everything else as a 4-byte
/// big-endian length (which counts the bytes after it) and its content. Never touches bytes that were there before.
/// Holds a reference: the value must outlive the serializer. Throws std::length_error when a length exceeds 32 bits.
template <typename T>
class Serializer {
 public:
  explicit Serializer(const T& value) noexcept : value_(value) {}

  void pushbackTo(ByteVector& out) const;

  /// Inserts the four big-endian bytes of `value` in front of the byte at `position`, which must not exceed out.size().
  static void insertToHelper(ByteVector& out, std::size_t position, std::uint32_t value) {
    unsigned char bytes[sizeof(value)];
    StoreBigEndian(value, bytes);
    out.insert(out.begin() + static_cast<ByteVector::difference_type>(position), bytes, bytes + sizeof(value));
  }

 private:
  const T& value_;
};

/// Writes the members of a record in tag-length-value form: each present member, in the order of the record's list.
class TLV_Enumerator {
 public:
  explicit TLV_Enumerator(ByteVector& out) noexcept : out_(out) {}

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) {
    if (member) {
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const T& member) {
    Serializer<std::uint16_t>(MakeTag(WireTypeOf<T>(), dataId)).pushbackTo(out_);
    Serializer<T>(member).pushbackTo(out_);
  }

 private:
  ByteVector& out_;
};

/// Appends a whole sequence, the value of a field: the number of bytes that follow, then the elements.
template <typename Sequence>
class SequenceContainerSerializer {
  static_assert(kIsSequence<Sequence>, "SequenceContainerSerializer writes a std::vector");

 public:
  explicit SequenceContainerSerializer(const Sequence& value) noexcept : value_(value) {}

  /// Grows `out` at most once, to the exact size where it was empty.
  void pushbackTo(ByteVector& out) const { Serializer<Sequence>(value_).pushbackTo(out); }

 private:
  const Sequence& value_;
};

namespace detail {

/// Writes values one behind the other into memory that is known to be large enough.
class Writer {
 public:
  explicit Writer(unsigned char* position) noexcept : position_(position) {}

  template <typename T>
  void Write(const T& value) {
    if constexpr (kIsScalar<T>) {
      StoreBigEndian(value, position_);
      position_ += sizeof(T);
    } else {
      unsigned char* const lengthField = position_;
      position_ += kLengthFieldSize;
      const unsigned char* const content = position_;
      WriteContent(value);
      StoreBigEndian(static_cast<std::uint32_t>(position_ - content), lengthField);
    }
  }

  /// A member of a record: its tag, unless it is absent, and its value.
  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) {
    if (member) {
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const T& member) {
    Write(MakeTag(WireTypeOf<T>(), dataId));
    Write(member);
  }

 private:
  template <typename T>
  void WriteContent(const T& value) {
    if constexpr (kIsString<T> || kIsByteArray<T>) {
      position_ = std::copy(value.begin(), value.end(), position_);
    } else if constexpr (kIsSequence<T>) {
      for (const auto& element : value) {
        Write<typename T::value_type>(element);
      }
    } else {
      T::enumerate(value, *this);
    }
  }

  unsigned char* position_;
};

}  // namespace detail

template <typename T>
void Serializer<T>::pushbackTo(ByteVector& out) const {
  const std::size_t size = SerializedSize(value_);
  // The outermost length is the greatest.
  if (size > kLengthFieldSize + std::uint64_t{std::numeric_limits<std::uint32_t>::max()}) {
    throw std::length_error("value is too large for a 32-bit length field");
  }
  const std::size_t position = out.size();
  out.resize(position + size);
  detail::Writer(out.data() + position).Write(value_);
}

}  // namespace ara::com::internal::vsomeip::common
