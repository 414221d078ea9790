#pragma once

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

  /// Grows `out` at most once, to the exact size.
  void pushbackTo(ByteVector& out) const {
    out.reserve(out.size() + SerializedSize(value_));
    Serializer<Sequence>(value_).pushbackTo(out);
  }

 private:
  const Sequence& value_;
};

namespace detail {

/// Appends a length field and fills it in, on Close(), with the number of bytes appended since.
class LengthField {
 public:
  explicit LengthField(ByteVector& out) : out_(out), start_(out.size()) { out_.resize(start_ + kLengthFieldSize); }

  void Close() {
    const std::size_t length = out_.size() - start_ - kLengthFieldSize;
    if (length > std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("value is too large for a 32-bit length field");
    }
    StoreBigEndian(static_cast<std::uint32_t>(length), out_.data() + start_);
  }

 private:
  ByteVector& out_;
  std::size_t start_;
};

}  // namespace detail

template <typename T>
void Serializer<T>::pushbackTo(ByteVector& out) const {
  if constexpr (kIsScalar<T>) {
    const std::size_t position = out.size();
    out.resize(position + sizeof(T));
    StoreBigEndian(value_, out.data() + position);
  } else {
    detail::LengthField length(out);
    if constexpr (kIsString<T> || kIsByteArray<T>) {
      out.insert(out.end(), value_.begin(), value_.end());
    } else if constexpr (kIsSequence<T>) {
      for (const auto& element : value_) {
        Serializer<typename T::value_type>(element).pushbackTo(out);
      }
    } else {
      TLV_Enumerator members(out);
      T::enumerate(value_, members);
    }
    length.Close();
  }
}

}  // namespace ara::com::internal::vsomeip::common
