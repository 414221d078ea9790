#pragma once

#include <cstdint>
#include <memory>

#include <vsomeip/vsomeip.hpp>

namespace ara::com::internal::vsomeip::proxy {

/// A message's payload as a view, which keeps it alive; a message without one has no bytes.
struct PayloadView {
  explicit PayloadView(const ::vsomeip::message& message) : payload(message.get_payload()) {}

  const unsigned char* Data() const { return payload == nullptr ? nullptr : payload->get_data(); }
  std::uint64_t Size() const { return payload == nullptr ? 0 : payload->get_length(); }

  std::shared_ptr<const ::vsomeip::payload> payload;
};

}  // namespace ara::com::internal::vsomeip::proxy
