#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "core_types/optional.h"
#include "serialization/deserializing_enumerator.h"
#include "serialization/member_view.h"
#include "serialization/scalar_deserializer.h"
#include "serialization/wire_type.h"

namespace ara::com::internal::vsomeip::common {

#ifndef TARN7_SHORT_SCALAR_IS_FATAL
#define TARN7_SHORT_SCALAR_IS_FATAL 1
#endif

/// Records: a 4-byte length, then members in tag-length-value form. Members with an unknown data id are skipped; of a
/// data id that occurs twice the later value stays.
///
/// getValue() throws std::runtime_error where a length does not fit. A scalar member whose bytes are fewer than its
/// type needs ends the process instead (std::terminate): a sender that writes a member narrower than its type has
/// another interface in mind, and none of its values can be trusted. Built with TARN7_SHORT_SCALAR=error it is
/// std::runtime_error, too.
template <typename T>
class Deserializer<T, std::enable_if_t<kIsRecord<T>>> {
 public:
  Deserializer(const unsigned char* data, std::uint64_t size) noexcept : data_(data), size_(size) {}

  T getValue() const;

 private:
  const unsigned char* data_;
  std::uint64_t size_;
};

/// Sequences: the number of bytes that follow, then the elements one after another. There is no element count.
template <typename Sequence>
class SequenceContainerDeserializer;

template <typename T>
class SequenceContainerDeserializer<std::vector<T>> {
 public:
  SequenceContainerDeserializer(const unsigned char* data, std::uint64_t size) noexcept : data_(data), size_(size) {}

  /// The elements, in one allocation of the exact size (none when empty). Throws std::runtime_error; nothing partial is
  /// returned.
  std::vector<T> getValue() const;

 private:
  static std::vector<T> ReadScalars(const unsigned char* content, std::uint64_t length);
  static std::size_t CountElements(const unsigned char* content, std::uint64_t length) noexcept;

  const unsigned char* data_;
  std::uint64_t size_;
};

template <typename T>
class Deserializer<std::vector<T>> : public SequenceContainerDeserializer<std::vector<T>> {
 public:
  using SequenceContainerDeserializer<std::vector<T>>::SequenceContainerDeserializer;
};

/// Strings and fixed-size byte arrays: a 4-byte length and the bytes as they are.
template <typename T>
class Deserializer<T, std::enable_if_t<kIsString<T> || kIsByteArray<T>>> {
 public:
  Deserializer(const unsigned char* data, std::uint64_t size) noexcept : data_(data), size_(size) {}

  T getValue() const;

 private:
  const unsigned char* data_;
  std::uint64_t size_;
};

namespace detail {

inline constexpr const char* kRecordTooLong = "Deserialization of structure failed, declared size excess data length.";
inline constexpr const char* kSequenceTooShort = "Deserialization of sequence container failed, insufficient data.";

/// The data ids of the members that a record cannot do without: those that are no Optional.
struct RequiredMemberCollector {
  std::set<std::uint16_t>& ids;

  template <typename T>
  void operator()(std::uint16_t, const char*, const ara::core::Optional<T>&) const noexcept {}
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const T&) const {
    ids.insert(dataId);
  }
};

/// Goes through a record's bytes. Applied to the list of the record's members, it fills those that come next: in one
/// round all of them, where they lie in the order of the list.
class MemberReader {
 public:
  MemberReader(const unsigned char* data, std::uint64_t size) : position_(data), remaining_(size) { Look(); }

  template <typename T>
  void operator()(std::uint16_t dataId, const char*, ara::core::Optional<T>& member) {
    while (IsNext(dataId)) {
      Decode(member);
      Advance();
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, T& member) {
    while (IsNext(dataId)) {
      ara::core::Optional<T> decoded;
      Decode(decoded);
      member = std::move(*decoded);
      required_.erase(dataId);
      Advance();
    }
  }

  bool IsAtEnd() const noexcept { return remaining_ == 0; }
  std::uint64_t Remaining() const noexcept { return remaining_; }
  void Advance() {
    position_ += kTagSize + next_.size;
    remaining_ -= kTagSize + next_.size;
    Look();
  }
  std::set<std::uint16_t>& Required() noexcept { return required_; }

 private:
  bool IsNext(std::uint16_t dataId) const noexcept { return remaining_ > 0 && next_.dataId == dataId; }
  void Look() {
    if (remaining_ > 0) {
      next_ = ReadMember(position_, remaining_);
    }
  }

  template <typename T>
  void Decode(ara::core::Optional<T>& member) const {
    if constexpr (kIsScalar<T>) {
      DecodeScalar(member);
    } else {
      member = Deserializer<T>(next_.data, next_.size).getValue();
    }
  }

  // No exception leaves this function where a scalar that is shorter than its type is to be fatal.
  template <typename T>
  void DecodeScalar(ara::core::Optional<T>& member) const noexcept(TARN7_SHORT_SCALAR_IS_FATAL) {
    DeserializingEnumerator(next_.data, next_.size)(member);
  }

  const unsigned char* position_;  // of the next member, if any bytes remain
  std::uint64_t remaining_;
  MemberView next_{};
  std::set<std::uint16_t> required_;
};

}  // namespace detail

template <typename T>
T Deserializer<T, std::enable_if_t<kIsRecord<T>>>::getValue() const {
  if (size_ < kLengthFieldSize) {
    throw std::runtime_error("Deserialization of structure failed, unable to read size.");
  }
  const std::uint32_t length = Deserializer<std::uint32_t>(data_, size_).getValue();
  if (length > size_ - kLengthFieldSize) {
    throw std::runtime_error(detail::kRecordTooLong);
  }
  T record{};
  detail::MemberReader members(data_ + kLengthFieldSize, length);
  T::enumerate(record, detail::RequiredMemberCollector{members.Required()});
  while (!members.IsAtEnd()) {
    const std::uint64_t before = members.Remaining();
    T::enumerate(record, members);
    if (members.Remaining() == before) {
      members.Advance();  // beyond a member with an unknown data id
    }
  }
  if (!members.Required().empty()) {
    throw std::runtime_error("Failed to deserialize required fields");
  }
  return record;
}

template <typename T>
std::vector<T> SequenceContainerDeserializer<std::vector<T>>::getValue() const {
  const std::uint32_t length = Deserializer<std::uint32_t>(data_, size_).getValue();
  if (length > size_ - kLengthFieldSize) {
    throw std::runtime_error(detail::kSequenceTooShort);
  }
  const unsigned char* position = data_ + kLengthFieldSize;
  if constexpr (kIsScalar<T>) {
    return ReadScalars(position, length);
  } else {
    std::vector<T> elements;
    elements.reserve(CountElements(position, length));
    std::uint64_t handed = size_ - kLengthFieldSize;  // may be more than the sequence has
    for (std::uint64_t remaining = length; remaining > 0;) {
      elements.push_back(Deserializer<T>(position, handed).getValue());
      const std::uint64_t extent = kLengthFieldSize + Deserializer<std::uint32_t>(position, handed).getValue();
      if (extent > remaining) {
        throw std::runtime_error(detail::kSequenceTooShort);
      }
      position += extent;
      handed -= extent;
      remaining -= extent;
    }
    return elements;
  }
}

template <typename T>
std::vector<T> SequenceContainerDeserializer<std::vector<T>>::ReadScalars(const unsigned char* content,
                                                                          std::uint64_t length) {
  if (length % sizeof(T) != 0) {
    throw std::runtime_error(detail::kSequenceTooShort);
  }
  std::vector<T> elements(static_cast<std::size_t>(length / sizeof(T)));
  for (std::size_t i = 0; i < elements.size(); ++i) {
    elements[i] = Deserializer<T>(content + i * sizeof(T), sizeof(T)).getValue();
  }
  return elements;
}

// How many elements there are, for the reservation: as far as their lengths can be followed.
template <typename T>
std::size_t SequenceContainerDeserializer<std::vector<T>>::CountElements(const unsigned char* content,
                                                                         std::uint64_t length) noexcept {
  std::size_t count = 0;
  while (length >= kLengthFieldSize) {
    std::uint32_t elementLength = 0;
    LoadBigEndian(content, elementLength);
    const std::uint64_t extent = kLengthFieldSize + std::uint64_t{elementLength};
    if (extent > length) {
      break;
    }
    content += extent;
    length -= extent;
    ++count;
  }
  return count;
}

template <typename T>
T Deserializer<T, std::enable_if_t<kIsString<T> || kIsByteArray<T>>>::getValue() const {
  const std::uint32_t length = Deserializer<std::uint32_t>(data_, size_).getValue();
  if (length > size_ - kLengthFieldSize) {
    throw std::runtime_error(detail::kSequenceTooShort);
  }
  const unsigned char* const content = data_ + kLengthFieldSize;
  if constexpr (kIsString<T>) {
    return T(reinterpret_cast<const char*>(content), length);
  } else {
    T bytes;
    if (length != bytes.size()) {
      throw std::runtime_error(detail::kSequenceTooShort);
    }
    std::memcpy(bytes.data(), content, length);
    return bytes;
  }
}

/// Decodes a whole payload as a field's value. A payload shorter than the sequence that it declares has a text of its
/// own.
template <typename Sequence>
Sequence DeserializeFieldValue(const unsigned char* data, std::uint64_t size) {
  if (size < kLengthFieldSize || Deserializer<std::uint32_t>(data, size).getValue() > size - kLengthFieldSize) {
    throw std::runtime_error("Deserialization of ara::core::Vector<T> failed, insufficient data.");
  }
  return SequenceContainerDeserializer<Sequence>(data, size).getValue();
}

}  // namespace ara::com::internal::vsomeip::common
