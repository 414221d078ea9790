#include "tools/tarn7/stack/raw_getter.h"

#include <memory>
#include <stdexcept>
#include <string>

#include "core_types/error_code.h"
#include "platform/include/error_domain_registry.h"
#include "serialization/error_code_codec.h"
#include "tools/tarn7/client/call_error.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/stack/stack_application.h"

namespace tarn7::tool {

namespace {

namespace common = ara::com::internal::vsomeip::common;

std::vector<unsigned char> PayloadOf(const vsomeip::message& message) {
  const auto payload = message.get_payload();
  if (payload == nullptr) {
    return {};
  }
  return {payload->get_data(), payload->get_data() + payload->get_length()};
}

[[noreturn]] void ThrowErrorResponse(const vsomeip::message& response) {
  const std::vector<unsigned char> payload = PayloadOf(response);
  if (payload.size() != common::ErrorCodeWireForm::kSize) {
    throw CommandError(Status::kCallFailed, "the call failed: return code " +
                                                std::to_string(static_cast<int>(response.get_return_code())) +
                                                " without an error code");
  }
  const common::Deserializer<ara::core::ErrorCode> code(payload.data(), payload.size());
  const auto& domain = common::error_domains::Registry::getDomain(code.domainId());
  ThrowCallError(ara::core::ErrorCode(code.value(), code.supportData(), domain));
}

}  // namespace

std::vector<unsigned char> GetPayload(Loop& loop, const FieldAddress& address, std::uint16_t instance,
                                      Loop::TimePoint deadline) {
  const Interface& interface = *address.interface;
  const std::uint16_t method = address.field->Ids().getter;
  bool available = false;
  std::shared_ptr<vsomeip::message> response;

  StackApplication application("tarn7-get");
  application->register_message_handler(interface.service_id, instance, method, [&](const auto& message) {
    loop.Post([&response, message] { response = message; });
  });
  application->register_availability_handler(
      interface.service_id, instance,
      [&](auto, auto, bool isAvailable) { loop.Post([&available, isAvailable] { available = isAvailable; }); },
      interface.major_version);
  application->request_service(interface.service_id, instance, interface.major_version);
  if (!loop.RunUntil(deadline, [&available] { return available; })) {
    throw CommandError(Status::kUnavailable,
                       interface.name + ", instance " + std::to_string(instance) + " is not offered");
  }
  const auto request = StackApplication::Runtime()->create_request(false);
  request->set_service(interface.service_id);
  request->set_instance(instance);
  request->set_method(method);
  request->set_interface_version(interface.major_version);
  application->send(request);
  if (!loop.RunUntil(deadline, [&response] { return response != nullptr; })) {
    throw CommandError(Status::kUnavailable, address.ToString() + " was not answered in time");
  }
  if (response->get_message_type() == vsomeip::message_type_e::MT_ERROR ||
      response->get_return_code() != vsomeip::return_code_e::E_OK) {
    ThrowErrorResponse(*response);
  }
  return PayloadOf(*response);
}

}  // namespace tarn7::tool
