#pragma once

#include <memory>
#include <utility>

#include <vsomeip/vsomeip.hpp>

#include "core_types/error_code.h"
#include "platform/include/connection.h"
#include "serialization/error_code_codec.h"
#include "serialization/serializer.h"

namespace ara::com::internal::vsomeip::common {

/// The bytes of an error response.
inline ByteVector ErrorPayload(const ara::core::ErrorCode& error) {
  ByteVector bytes;
  Serializer<ara::core::ErrorCode>(error).pushbackTo(bytes);
  return bytes;
}

/// The bytes of a field's value.
template <typename T>
ByteVector ValuePayload(const T& value) {
  ByteVector bytes;
  SequenceContainerSerializer<T>(value).pushbackTo(bytes);
  return bytes;
}

/// What a message takes: the stack's payload, which becomes the owner of the bytes.
inline std::shared_ptr<::vsomeip::payload> MakePayload(ByteVector bytes) {
  auto payload = runtime::VSomeIPConnection::MessageRuntime()->create_payload();
  payload->set_data(std::move(bytes));
  return payload;
}

}  // namespace ara::com::internal::vsomeip::common
