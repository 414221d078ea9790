#include "platform/include/message_check.h"

#include <cstdlib>

#include "platform/vsomeipbinding/platform_log.h"

namespace ara::com::internal::vsomeip::common {

namespace {

/// What is wrong with the header; null when nothing is.
const char* FindFault(const ::vsomeip::message& message, std::uint16_t serviceId, std::uint16_t methodId,
                      std::uint8_t interfaceVersion, ::vsomeip::message_type_e expectedType,
                      ::vsomeip::message_type_e alternativeType, bool isRequest) {
  if (message.get_service() != serviceId) {
    return "service";
  }
  if (message.get_method() != methodId) {
    return "id";
  }
  if (message.get_interface_version() != interfaceVersion) {
    return "interface version";
  }
  const ::vsomeip::message_type_e type = message.get_message_type();
  // MT_UNKNOWN says that there is no alternative: a message without a valid type must not fit.
  if (type == ::vsomeip::message_type_e::MT_UNKNOWN || (type != expectedType && type != alternativeType)) {
    return "message type";
  }
  if (isRequest && message.get_return_code() != ::vsomeip::return_code_e::E_OK) {
    return "return code";
  }
  return nullptr;
}

}  // namespace

bool checkMessageMetaData(const ::vsomeip::message& message, std::uint16_t serviceId, std::uint16_t methodId,
                          std::uint8_t interfaceVersion, ::vsomeip::message_type_e expectedType,
                          ::vsomeip::message_type_e alternativeType, bool isMethodCall, bool isRequest) {
  const char* fault =
      FindFault(message, serviceId, methodId, interfaceVersion, expectedType, alternativeType, isRequest);
  if (fault != nullptr) {
    PlatformLog().LogDebug().WithLocation("vsomeipbinding/message_check", __func__, __LINE__)
        << "Unexpected " << fault << " in a message for " << (isMethodCall ? "method " : "event ") << methodId
        << " of service " << serviceId;
  }
  return fault == nullptr;
}

bool isMethodUndefined(std::uint16_t methodId) noexcept { return methodId == ::vsomeip::ANY_METHOD || methodId == 0; }

bool isEventUndefined(std::uint16_t eventId) noexcept { return eventId == ::vsomeip::ANY_EVENT || eventId == 0; }

void abort() noexcept {
  PlatformLog().LogFatal().WithLocation("vsomeipbinding/message_check", __func__, __LINE__)
      << "A method or an event of a service is not configured: the process stops here";
  std::abort();  // every log entry has been written by now: the log buffers nothing
}

}  // namespace ara::com::internal::vsomeip::common
