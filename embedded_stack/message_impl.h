#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "embedded_stack/net/send_queue.h"
#include "embedded_stack/wire/discovery_message.h"
#include "embedded_stack/wire/message_header.h"
#include "vsomeip/message.hpp"
#include "vsomeip/payload.hpp"

namespace vsomeip_v3::embedded {

class PayloadImpl final : public payload {
 public:
  PayloadImpl() = default;
  explicit PayloadImpl(std::vector<byte_t> bytes) : bytes_(std::move(bytes)) {}
  const std::vector<byte_t>& bytes() const { return bytes_; }

  bool operator==(const payload& other) const override;
  byte_t* get_data() override { return bytes_.data(); }
  const byte_t* get_data() const override { return bytes_.data(); }
  length_t get_length() const override { return static_cast<length_t>(bytes_.size()); }
  void set_data(const byte_t* data, length_t length) override;
  void set_data(const std::vector<byte_t>& data) override { bytes_ = data; }
  void set_data(std::vector<byte_t>&& data) override { bytes_ = std::move(data); }
  void set_capacity(length_t length) override { bytes_.reserve(length); }

 private:
  std::vector<byte_t> bytes_;
};

// The bytes as they are now, for as long as they are wanted. They are copied only if somebody else has the payload, or
// message, too, who might change it.
SharedBytes Keep(const std::shared_ptr<payload>& payload);
SharedBytes Keep(const std::shared_ptr<message>& message);

// Where a request came from, and so where its response goes.
struct Origin {
  std::size_t socket = 0;
  Endpoint peer;
};

// Always owned by a shared pointer.
class MessageImpl final : public message, public std::enable_shared_from_this<MessageImpl> {
 public:
  MessageImpl() { header_.type = static_cast<std::uint8_t>(message_type_e::MT_UNKNOWN); }
  MessageImpl(const MessageHeader& header, instance_t instance, std::vector<byte_t> bytes)
      : header_(header), instance_(instance), own_payload_(std::move(bytes)) {}

  message_t get_message() const override { return Join(header_.service, header_.method); }
  void set_message(message_t ids) override;
  service_t get_service() const override { return header_.service; }
  void set_service(service_t service) override { header_.service = service; }
  instance_t get_instance() const override { return instance_; }
  void set_instance(instance_t instance) override { instance_ = instance; }
  method_t get_method() const override { return header_.method; }
  void set_method(method_t method) override { header_.method = method; }
  length_t get_length() const override { return kLengthBase + static_cast<length_t>(bytes().size()); }
  request_t get_request() const override { return Join(header_.client, header_.session); }
  client_t get_client() const override { return header_.client; }
  void set_client(client_t client) override { header_.client = client; }
  session_t get_session() const override { return header_.session; }
  void set_session(session_t session) override { header_.session = session; }
  protocol_version_t get_protocol_version() const override { return header_.protocol_version; }
  interface_version_t get_interface_version() const override { return header_.interface_version; }
  void set_interface_version(interface_version_t version) override { header_.interface_version = version; }
  message_type_e get_message_type() const override { return static_cast<message_type_e>(header_.type); }
  void set_message_type(message_type_e type) override { header_.type = static_cast<std::uint8_t>(type); }
  return_code_e get_return_code() const override { return static_cast<return_code_e>(header_.return_code); }
  void set_return_code(return_code_e code) override { header_.return_code = static_cast<std::uint8_t>(code); }
  bool is_reliable() const override { return is_reliable_; }
  void set_reliable(bool is_reliable) override { is_reliable_ = is_reliable; }
  bool is_initial() const override { return is_initial_; }
  void set_initial(bool is_initial) override { is_initial_ = is_initial; }

  std::shared_ptr<payload> get_payload() const override;
  void set_payload(std::shared_ptr<payload> payload) override;
  std::uint8_t get_check_result() const override { return check_result_; }
  void set_check_result(std::uint8_t check_result) override { check_result_ = check_result; }
  bool is_valid_crc() const override { return check_result_ == 0; }

  const MessageHeader& header() const { return header_; }
  ByteView bytes() const;  // of the payload
  const std::optional<Origin>& origin() const { return origin_; }
  void set_origin(const std::optional<Origin>& origin) { origin_ = origin; }

 private:
  static std::uint32_t Join(std::uint16_t high, std::uint16_t low) {
    return (static_cast<std::uint32_t>(high) << 16U) | low;
  }

  MessageHeader header_;
  instance_t instance_ = 0;
  PayloadImpl own_payload_;           // until another one is set; saves an allocation
  std::shared_ptr<payload> payload_;  // null until then
  std::optional<Origin> origin_;
  std::uint8_t check_result_ = 0;
  bool is_reliable_ = false;
  bool is_initial_ = false;
};

}  // namespace vsomeip_v3::embedded
