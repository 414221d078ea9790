// The payload of an error response: decoded, its domain resolved, its message made, and written again.
#include <cstring>
#include <stdexcept>

#include "ara/com/internal/vsomeip/common/payload.h"
#include "core_types/error_code.h"
#include "fuzz/check.h"
#include "platform/include/error_domain_registry.h"
#include "serialization/error_code_codec.h"

namespace {

namespace common = ara::com::internal::vsomeip::common;
using Decoder = common::Deserializer<ara::core::ErrorCode>;

ara::core::ErrorCode Resolve(const Decoder& decoded) {
  return {decoded.value(), decoded.supportData(), common::error_domains::Registry::getDomain(decoded.domainId())};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const Decoder decoded(data, size);
    const ara::core::ErrorCode code = Resolve(decoded);
    fuzz::Require(code.Domain().Message(code.Value()) != nullptr, "every code has a message");
    // Domains that nobody knows are limited in number; those beyond share one object, which has an id of its own.
    if (code.Domain().Id() == decoded.domainId()) {
      const common::ByteVector written = common::ErrorPayload(code);
      fuzz::Require(written.size() == size && std::memcmp(written.data(), data, size) == 0,
                    "an error code is written as it was read");
    }
  } catch (const std::runtime_error&) {
    // refused
  }
  return 0;
}
