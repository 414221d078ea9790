#include "embedded_stack/message_impl.h"

#include <algorithm>

namespace vsomeip_v3::embedded {

bool PayloadImpl::operator==(const payload& other) const {
  return std::equal(bytes_.begin(), bytes_.end(), other.get_data(), other.get_data() + other.get_length());
}

void PayloadImpl::set_data(const byte_t* data, length_t length) {
  bytes_ = data == nullptr ? std::vector<byte_t>() : std::vector<byte_t>(data, data + length);
}

void MessageImpl::set_message(message_t ids) {
  header_.service = static_cast<service_t>(ids >> 16U);
  header_.method = static_cast<method_t>(ids);
}

void MessageImpl::set_payload(std::shared_ptr<payload> payload) {
  payload_ = payload ? std::move(payload) : std::make_shared<PayloadImpl>();
}

}  // namespace vsomeip_v3::embedded
