#include "platform/include/transport_identifier.h"

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

#include <vsomeip/vsomeip.hpp>

namespace ara::com::internal::vsomeip::common {

ara::core::Optional<std::uint16_t> ToTransportIdentifier(const InstanceIdentifier& identifier) {
  std::string_view text = identifier.ToString();
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint16_t instance = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), instance, base);
  if (error != std::errc() || end != text.data() + text.size() || instance == ::vsomeip::ANY_INSTANCE) {
    return std::nullopt;
  }
  return instance;
}

InstanceIdentifier FromTransportIdentifier(const std::uint16_t& instanceId) {
  return InstanceIdentifier(std::to_string(instanceId));
}

}  // namespace ara::com::internal::vsomeip::common
