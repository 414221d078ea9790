#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "serialization/scalar_deserializer.h"
#include "serialization/wire_type.h"
#include "tools/tarn7/values/value_type.h"

namespace tarn7::tool {

/// The value of a field as it is on the network.
using Payload = std::vector<unsigned char>;

namespace common = ara::com::internal::vsomeip::common;

/// Bytes of a payload, and where in it they begin.
struct Extent {
  const unsigned char* data = nullptr;
  std::uint64_t size = 0;
  std::uint64_t offset = 0;

  Extent First(std::uint64_t count) const noexcept { return {data, count, offset}; }
  Extent From(std::uint64_t skipped) const noexcept { return {data + skipped, size - skipped, offset + skipped}; }
  /// The number in the four bytes, which must be there, that a value begins with.
  std::uint64_t Length() const { return common::Deserializer<std::uint32_t>(data, size).getValue(); }
  /// What follows that number, and no more: the value without its length. The length must fit.
  Extent Content() const { return From(common::kLengthFieldSize).First(Length()); }
};

inline Extent Whole(const Payload& payload) { return {payload.data(), payload.size(), 0}; }

/// A number of `size` bytes, 1 to 8, the most significant one first; in front of them the bits of `number`.
inline std::uint64_t LoadNumber(const unsigned char* data, std::size_t size, std::uint64_t number = 0) {
  for (std::size_t i = 0; i < size; ++i) {
    number = number << 8U | data[i];
  }
  return number;
}

inline void StoreNumber(std::uint64_t number, unsigned char* data, std::size_t size) {
  for (std::size_t i = size; i-- > 0; number >>= 8U) {
    data[i] = static_cast<unsigned char>(number);
  }
}

/// A float of 4 or 8 bytes. Those of 4 are read without a loss, and written as the nearest that there is.
double LoadFloat(const unsigned char* data, std::size_t size);
void StoreFloat(double number, unsigned char* data, std::size_t size);

/// What goes in front of a member's value.
std::uint16_t TagOf(const Member& member);

/// Appends the length of what `appendContent()` appends, and that. Throws std::length_error where it takes more than 32
/// bits.
template <typename AppendContent>
void AppendWithLength(Payload& payload, AppendContent appendContent) {
  const std::size_t begin = payload.size() + common::kLengthFieldSize;
  payload.resize(begin);
  appendContent();
  const std::size_t length = payload.size() - begin;
  if (length > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("a value is too large for a 32-bit length field");
  }
  StoreNumber(length, payload.data() + begin - common::kLengthFieldSize, common::kLengthFieldSize);
}

inline void AppendNumber(Payload& payload, std::uint64_t number, std::size_t size) {
  payload.resize(payload.size() + size);
  StoreNumber(number, payload.data() + payload.size() - size, size);
}

// The parts of a value that CheckPayload let pass.

/// The members of a record as a decoder leaves them, in the order of the type: of each, the bytes that came last. One
/// that is absent has no bytes.
std::vector<Extent> MembersOf(const RecordType& record, const Extent& value);

/// Calls `visit(element)` for the bytes of each element of a sequence.
template <typename Visit>
void ForEachElement(const ValueType& sequence, const Extent& value, Visit visit) {
  for (Extent rest = value.Content(); rest.size > 0;) {
    const std::uint64_t size =
        sequence.element->IsScalar() ? sequence.element->size : common::kLengthFieldSize + rest.Length();
    visit(rest.First(size));
    rest = rest.From(size);
  }
}

}  // namespace tarn7::tool
