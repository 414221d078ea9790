#pragma once

#include "core_types/error_code.h"
#include "serialization/error_code_codec.h"

namespace ara::com::internal::vsomeip::common {

/// The payload of an error response.
inline ByteVector ErrorPayload(const ara::core::ErrorCode& error) {
  ByteVector bytes;
  Serializer<ara::core::ErrorCode>(error).pushbackTo(bytes);
  return bytes;
}

}  // namespace ara::com::internal::vsomeip::common
