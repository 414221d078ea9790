#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>

#include <vsomeip/vsomeip.hpp>

#include "ara/com/internal/vsomeip/common/logger.h"
#include "core_types/com_error_domain.h"
#include "core_types/promise.h"
#include "platform/include/connection.h"
#include "platform/include/error_domain_registry.h"
#include "serialization/deserializer.h"
#include "serialization/error_code_codec.h"
#include "serialization/serializer.h"

namespace ara::com::internal::vsomeip::proxy::detail {

inline constexpr const char* kDelegateSource = "proxy/vsomeip_method_impl_delegate";

/// Attaches a field's value to a message.
template <typename T>
void AddPayload(runtime::VSomeIPConnection& connection, ::vsomeip::message& message, const T& value) {
  common::ByteVector bytes;
  common::SequenceContainerSerializer<T>(value).pushbackTo(bytes);
  message.set_payload(connection.MessageRuntime()->create_payload(bytes));
}

/// A message's payload as a view; a message without one has no bytes.
struct PayloadView {
  explicit PayloadView(const ::vsomeip::message& message) : payload(message.get_payload()) {}

  const unsigned char* Data() const { return payload == nullptr ? nullptr : payload->get_data(); }
  std::uint64_t Size() const { return payload == nullptr ? 0 : payload->get_length(); }

  std::shared_ptr<const ::vsomeip::payload> payload;
};

/// Completes a call with the value that a response carries, or with kNetworkBindingFailure where it cannot be decoded.
template <typename R>
void SetResult(ara::core::Promise<R>& promise, const ::vsomeip::message& response) {
  ara::core::Result<R> result = MakeErrorCode(ComErrc::kNetworkBindingFailure);
  try {
    const PayloadView payload(response);
    result = common::DeserializeFieldValue<R>(payload.Data(), payload.Size());
  } catch (const std::exception& error) {
    common::LogWarning(kDelegateSource, "SetResult", __LINE__)
        << "(Exception : proxy/vsomeip_method_impl_delegate.h) SetResult() deserializer error : " << error.what();
  }
  promise.SetResult(std::move(result));
}

/// Completes a call with the error code that a response carries, or with kNetworkBindingFailure where it cannot be
/// decoded.
template <typename R>
void SetError(ara::core::Promise<R>& promise, const ::vsomeip::message& response) {
  ara::core::ErrorCode code = MakeErrorCode(ComErrc::kNetworkBindingFailure);
  try {
    const PayloadView payload(response);
    const common::Deserializer<ara::core::ErrorCode> decoded(payload.Data(), payload.Size());
    const auto& domain = common::error_domains::Registry::getDomain(decoded.domainId());
    code = ara::core::ErrorCode(decoded.value(), decoded.supportData(), domain);
  } catch (const std::exception& error) {
    common::LogWarning(kDelegateSource, "SetError", __LINE__)
        << "(Exception : proxy/vsomeip_method_impl_delegate.h) SetError() deserializer error : " << error.what();
  }
  promise.SetError(ara::core::ErrorCode(code));
}

}  // namespace ara::com::internal::vsomeip::proxy::detail
