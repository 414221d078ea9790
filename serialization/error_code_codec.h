#pragma once

#include <cstdint>
#include <stdexcept>

#include "core_types/error_code.h"
#include "serialization/scalar_deserializer.h"
#include "serialization/serializer.h"

namespace ara::com::internal::vsomeip::common {

/// An error code on the wire: 23 bytes, of which the first length, the marker and the second length are fixed.
struct ErrorCodeWireForm {
  static constexpr std::uint64_t kSize = 23;
  static constexpr std::uint32_t kFirstLength = 19;
  static constexpr std::uint8_t kMarker = 1;
  static constexpr std::uint16_t kSecondLength = 16;
};

/// The payload of an error response. Decoded and checked on construction, which throws std::runtime_error. The domain
/// is only an id here: resolving it is the caller's part.
template <>
class Deserializer<ara::core::ErrorCode> {
 public:
  Deserializer(const unsigned char* data, std::uint64_t size) : data_(data) {
    if (size != ErrorCodeWireForm::kSize) {
      throw std::runtime_error("Deserialization of ara::core::ErrorCode failed, unexpected data length.");
    }
    Read(0, first_length_);
    Read(4, marker_);
    Read(5, second_length_);
    Read(7, domain_id_);
    Read(15, value_);
    Read(19, support_data_);
    if (first_length_ != ErrorCodeWireForm::kFirstLength || marker_ != ErrorCodeWireForm::kMarker ||
        second_length_ != ErrorCodeWireForm::kSecondLength) {
      throw std::runtime_error("Deserialization of ara::core::ErrorCode failed, inconsistent data.");
    }
  }

  std::uint64_t domainId() const noexcept { return domain_id_; }
  std::int32_t value() const noexcept { return value_; }
  std::int32_t supportData() const noexcept { return support_data_; }

 private:
  template <typename T>
  void Read(std::uint64_t offset, T& target) const {
    Deserializer<T>(data_ + offset, ErrorCodeWireForm::kSize - offset).readInto(target);
  }

  const unsigned char* data_;
  std::uint32_t first_length_ = 0;
  std::uint8_t marker_ = 0;
  std::uint16_t second_length_ = 0;
  std::uint64_t domain_id_ = 0;
  std::int32_t value_ = 0;
  std::int32_t support_data_ = 0;
};

/// Appends the 23 bytes of an error code: the payload of an error response.
template <>
inline void Serializer<ara::core::ErrorCode>::pushbackTo(ByteVector& out) const {
  out.reserve(out.size() + ErrorCodeWireForm::kSize);
  Serializer<std::uint32_t>(ErrorCodeWireForm::kFirstLength).pushbackTo(out);
  Serializer<std::uint8_t>(ErrorCodeWireForm::kMarker).pushbackTo(out);
  Serializer<std::uint16_t>(ErrorCodeWireForm::kSecondLength).pushbackTo(out);
  Serializer<std::uint64_t>(value_.Domain().Id()).pushbackTo(out);
  Serializer<std::int32_t>(value_.Value()).pushbackTo(out);
  Serializer<std::int32_t>(value_.SupportData()).pushbackTo(out);
}

}  // namespace ara::com::internal::vsomeip::common
