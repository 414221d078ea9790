#include "tools/tarn7/stack/stack_field_client.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "core_types/error_code.h"
#include "platform/include/error_domain_registry.h"
#include "serialization/error_code_codec.h"
#include "tools/tarn7/client/call_error.h"
#include "tools/tarn7/client/limited_report.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/payload_check.h"

namespace tarn7::tool {

namespace {

using Message = std::shared_ptr<vsomeip::message>;
using ara::com::SubscriptionState;

Payload PayloadOf(const vsomeip::message& message) {
  const auto payload = message.get_payload();
  if (payload == nullptr) {
    return {};
  }
  return {payload->get_data(), payload->get_data() + payload->get_length()};
}

std::string WrongVersion(const vsomeip::message& message, const Interface& interface) {
  const int version = message.get_interface_version();
  return version == interface.major_version ? ""
                                            : "it has interface version " + std::to_string(version) + " instead of " +
                                                  std::to_string(static_cast<int>(interface.major_version));
}

/// Throws PayloadError for what is no value of the field.
Payload CheckedSample(const vsomeip::message& sample, const Interface& interface, const Field& field) {
  if (const std::string fault = WrongVersion(sample, interface); !fault.empty()) {
    throw PayloadError(fault);
  }
  Payload payload = PayloadOf(sample);
  CheckPayload(*field.type, payload);
  return payload;
}

[[noreturn]] void ThrowErrorResponse(const vsomeip::message& response) {
  const Payload payload = PayloadOf(response);
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

struct StackFieldClient::Inbox {
  std::mutex mutex;                // guards the members
  vsomeip::session_t session = 0;  // of the request
  Message response;
  std::atomic<ara::com::SubscriptionState> subscription{ara::com::SubscriptionState::kSubscriptionPending};
  LimitedReport passed_over;
  LimitedReport refused;
};

StackFieldClient::StackFieldClient(StackServiceClient& service, const Field& field)
    : service_(service), field_(field), inbox_(std::make_shared<Inbox>()) {}

void StackFieldClient::StartGet(std::function<void()> answered) { Send(field_.getter, {}, std::move(answered)); }

void StackFieldClient::StartSet(const Payload& value, std::function<void()> answered) {
  Send(field_.setter, value, std::move(answered));
}

void StackFieldClient::Send(std::uint16_t method, const Payload& payload, std::function<void()> answered) {
  const Interface& interface = service_.GetInterface();
  service_.Application()->register_message_handler(
      interface.service_id, service_.Instance(), method,
      [inbox = inbox_, answered = std::move(answered)](const Message& response) {
        {
          const std::lock_guard<std::mutex> lock(inbox->mutex);
          if (response->get_session() != inbox->session) {
            return;  // it answers nothing that was asked
          }
          inbox->response = response;
        }
        answered();
      });
  const auto request = StackApplication::Runtime()->create_request(false);
  request->set_service(interface.service_id);
  request->set_instance(service_.Instance());
  request->set_method(method);
  request->set_interface_version(interface.major_version);
  request->set_payload(StackApplication::Runtime()->create_payload(payload));
  // Sending gives the request its session, and the response may be here before that returns.
  const std::lock_guard<std::mutex> lock(inbox_->mutex);
  service_.Application()->send(request);
  inbox_->session = request->get_session();
}

Payload StackFieldClient::TakeAnswer() {
  const std::lock_guard<std::mutex> lock(inbox_->mutex);
  const Message response = std::move(inbox_->response);
  if (const std::string fault = WrongVersion(*response, service_.GetInterface()); !fault.empty()) {
    throw CommandError(Status::kCallFailed, "the call failed: the answer is not taken: " + fault);
  }
  if (response->get_message_type() == vsomeip::message_type_e::MT_ERROR ||
      response->get_return_code() != vsomeip::return_code_e::E_OK) {
    ThrowErrorResponse(*response);
  }
  return PayloadOf(*response);
}

void StackFieldClient::Subscribe(std::function<void()> arrived) {
  const Interface& interface = service_.GetInterface();
  StackApplication& application = service_.Application();
  // The handler first: the value as it stands may be here before subscribe() has returned.
  application->register_message_handler(
      interface.service_id, service_.Instance(), field_.event,
      [&interface, &field = field_, name = Name(), inbox = inbox_, samples = samples_,
       arrived = std::move(arrived)](const Message& sample) {
        try {
          samples->Push(CheckedSample(*sample, interface, field));
          arrived();
        } catch (const PayloadError& error) {
          inbox->passed_over.Write(name + ": a sample is passed over: " + error.what());
        }
      });
  application->request_event(interface.service_id, service_.Instance(), field_.event, {field_.eventgroup},
                             vsomeip::event_type_e::ET_FIELD);
  application->register_subscription_status_handler(
      interface.service_id, service_.Instance(), field_.eventgroup, field_.event,
      [name = Name(), inbox = inbox_](auto, auto, auto, auto, auto status) {
        inbox->subscription = status == 0 ? SubscriptionState::kSubscribed : SubscriptionState::kNotSubscribed;
        if (status != 0) {
          inbox->refused.Write(name + ": the subscription was refused");
        }
      });
  application->subscribe(interface.service_id, service_.Instance(), field_.eventgroup, interface.major_version,
                         field_.event);
}

// What an application offers is not protected end to end.
FieldState StackFieldClient::GetState() const {
  return {inbox_->subscription, ara::com::e2exf::ProfileCheckStatus::kNotAvailable};
}

std::string StackFieldClient::Name() const { return service_.GetInterface().name + '/' + field_.name; }

}  // namespace tarn7::tool
