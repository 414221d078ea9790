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

// Its own payload lives as long as the message, and the message as long as anybody has either.
std::shared_ptr<payload> MessageImpl::get_payload() const {
  if (payload_) return payload_;
  const auto self = std::const_pointer_cast<MessageImpl>(shared_from_this());
  return {self, &self->own_payload_};
}

void MessageImpl::set_payload(std::shared_ptr<payload> payload) {
  if (payload.get() == &own_payload_) {
    payload_ = nullptr;  // not a message that owns itself
  } else if (payload) {
    payload_ = std::move(payload);
  } else {
    payload_ = std::make_shared<PayloadImpl>();
  }
}

ByteView MessageImpl::bytes() const {
  const payload& current = payload_ ? std::as_const(*payload_) : own_payload_;
  return {current.get_data(), current.get_length()};
}

SharedBytes Keep(const std::shared_ptr<payload>& payload) {
  const auto* const own = dynamic_cast<const PayloadImpl*>(payload.get());
  if (own != nullptr && payload.use_count() == 1) return {payload, &own->bytes()};
  const byte_t* const data = std::as_const(*payload).get_data();
  return std::make_shared<const std::vector<byte_t>>(data, data + payload->get_length());
}

SharedBytes Keep(const std::shared_ptr<message>& message) {
  const auto payload = message->get_payload();
  const auto* const own = dynamic_cast<const PayloadImpl*>(payload.get());
  // Together with this function there are two owners if the payload is the message's own object, and two of it
  // otherwise.
  const bool is_inside = !payload.owner_before(message) && !message.owner_before(payload);
  const bool is_alone = is_inside ? message.use_count() == 2 : message.use_count() == 1 && payload.use_count() == 2;
  if (own != nullptr && is_alone) return {message, &own->bytes()};
  return Keep(payload);
}

}  // namespace vsomeip_v3::embedded
