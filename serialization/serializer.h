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

/// Appends the members of a record in tag-length-value form: each present member, in the order of the record's list.
class TLV_Enumerator {
 public:
  /// `rest` is how many bytes are expected to come after the record.
  explicit TLV_Enumerator(ByteVector& out, std::size_t rest = 0) noexcept : out_(out), rest_(rest) {}

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) const {
    if (member) {
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const T& member) const;

 private:
  ByteVector& out_;
  std::size_t rest_;
};

/// Appends a whole sequence, the value of a field: the number of bytes that follow, then the elements.
template <typename Sequence>
class SequenceContainerSerializer {
  static_assert(kIsSequence<Sequence>, "SequenceContainerSerializer writes a std::vector");

 public:
  explicit SequenceContainerSerializer(const Sequence& value) noexcept : value_(value) {}

  /// Leaves `out` as it was where it throws. An empty `out` grows once, to the exact size; a few times where the value
  /// is large.
  void pushbackTo(ByteVector& out) const { Serializer<Sequence>(value_).pushbackTo(out); }

 private:
  const Sequence& value_;
};

namespace detail {

/// Writes a value into memory that is known to be large enough, and returns where it ends. The position is handed on by
/// value: where it lay in an object, each byte written could be a byte of it, as far as the compiler knows.
template <typename T>
unsigned char* Write(const T& value, unsigned char* position);

/// The members of a record: the tag, unless it is absent, and the value of each.
struct MemberWriter {
  unsigned char* position;

  template <typename T>
  void operator()(std::uint16_t dataId, const char* name, const ara::core::Optional<T>& member) {
    if (member) {
      (*this)(dataId, name, *member);
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const T& member) {
    position = Write(member, Write(MakeTag(WireTypeOf<T>(), dataId), position));
  }
};

template <typename T>
unsigned char* Write(const T& value, unsigned char* position) {
  if constexpr (kIsScalar<T>) {
    StoreBigEndian(value, position);
    return position + sizeof(T);
  } else {
    unsigned char* const content = position + kLengthFieldSize;
    unsigned char* end = content;
    if constexpr (kIsString<T> || kIsByteArray<T>) {
      end = std::copy(value.begin(), value.end(), content);
    } else if constexpr (kIsSequence<T>) {
      for (const auto& element : value) {
        end = Write<typename T::value_type>(element, end);
      }
    } else {
      MemberWriter members{content};
      T::enumerate(value, members);
      end = members.position;
    }
    StoreBigEndian(static_cast<std::uint32_t>(end - content), position);
    return end;
  }
}

/// Records, and sequences of anything but numbers.
template <typename T>
inline constexpr bool kHasParts = kIsRecord<T>;
template <typename T>
inline constexpr bool kHasParts<std::vector<T>> = !kIsScalar<T>;

/// Appends a value of any size. A small one is sized, then written. A large one goes element by element, each of which
/// is sized and then written while the fastest cache still holds it: a walk through the whole of it beforehand would
/// fetch a tree that is many times its bytes on the wire from memory twice.
class Appender {
 public:
  explicit Appender(ByteVector& out) noexcept : out_(out) {}

  static constexpr std::size_t kSmall = 64U << 10U;     ///< a value that is sized, and written, as one
  static constexpr std::size_t kSmallPart = 8U << 10U;  ///< the same for what a large value consists of

  /// `small` is the size up to which the value is written as one, `rest` how many bytes are expected to come after it.
  template <typename T>
  void Append(const T& value, std::size_t small, std::size_t rest) {
    const std::size_t size = SerializedSize(value, small);
    if constexpr (kHasParts<T>) {
      if (size > small) {
        AppendParts(value, rest);
        return;
      }
    }
    RequireLength(size - std::min(size, kLengthFieldSize));
    Write(value, Extend(size, rest));
  }

 private:
  static constexpr std::size_t kBatch = 1024;  // elements that are smaller than this go together
  static constexpr std::size_t kGrowth = 16;

  // A record or a sequence: its length is written when its content is there.
  template <typename T>
  void AppendParts(const T& value, std::size_t rest) {
    const std::size_t start = out_.size();
    Extend(kLengthFieldSize, kSmall);
    if constexpr (kIsSequence<T>) {
      AppendElements(value, rest);
    } else {
      T::enumerate(value, TLV_Enumerator(out_, rest));
    }
    const std::size_t length = out_.size() - start - kLengthFieldSize;
    RequireLength(length);
    StoreBigEndian(static_cast<std::uint32_t>(length), out_.data() + start);
  }

  template <typename Sequence>
  void AppendElements(const Sequence& sequence, std::size_t rest) {
    const std::size_t start = out_.size();
    for (auto element = sequence.begin(); element != sequence.end();) {
      const auto done = static_cast<std::size_t>(element - sequence.begin());
      const std::size_t ahead = done == 0 ? rest : rest + (out_.size() - start) / done * (sequence.size() - done);
      std::size_t size = 0;
      auto end = element;
      for (; end != sequence.end() && size < kBatch; ++end) {
        const std::size_t elementSize = SerializedSize(*end, kSmallPart);
        if (elementSize > kSmallPart) {
          break;
        }
        size += elementSize;
      }
      if (end == element) {
        Append(*element++, 0, ahead);
      } else {
        for (unsigned char* position = Extend(size, ahead); element != end; ++element) {
          position = Write(*element, position);
        }
      }
    }
  }

  static void RequireLength(std::size_t length) {
    if (length > std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("value is too large for a 32-bit length field");
    }
  }

  // Adds `size` bytes to be written. Memory is taken for the rest as well, as far as what is there makes it credible.
  unsigned char* Extend(std::size_t size, std::size_t rest) {
    const std::size_t position = out_.size();
    const std::size_t needed = position + size;
    if (needed > out_.capacity()) {
      out_.reserve(needed + std::min(rest + rest / kGrowth, std::max(kGrowth * needed, kSmall)));
    }
    out_.resize(needed);
    return out_.data() + position;
  }

  ByteVector& out_;
};

}  // namespace detail

template <typename T>
void TLV_Enumerator::operator()(std::uint16_t dataId, const char*, const T& member) const {
  detail::Appender appender(out_);
  appender.Append(MakeTag(WireTypeOf<T>(), dataId), kTagSize, rest_);
  appender.Append(member, detail::Appender::kSmallPart, rest_);
}

template <typename T>
void Serializer<T>::pushbackTo(ByteVector& out) const {
  const std::size_t position = out.size();
  try {
    detail::Appender(out).Append(value_, detail::Appender::kSmall, 0);
  } catch (...) {
    out.resize(position);
    throw;
  }
}

}  // namespace ara::com::internal::vsomeip::common
