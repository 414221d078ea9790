#include "tools/tarn7/stack/simulated_service.h"

#include <stdexcept>
#include <utility>

#include "tools/tarn7/values/payload_check.h"

namespace tarn7::tool {

SimulatedService::SimulatedService(StackApplication& application, const Interface& interface, std::uint16_t instance)
    : application_(application), interface_(interface), instance_(instance), fields_(interface.fields.size()) {}

void SimulatedService::Offer(const std::vector<Payload>& values) {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const Field& field = interface_.fields[i];
    fields_[i].payload = StackApplication::Runtime()->create_payload(values[i]);
    RegisterHandler(field.getter, i, &SimulatedService::AnswerGetter);
    if (field.HasSetter()) {
      RegisterHandler(field.setter, i, &SimulatedService::AnswerSetter);
    }
    application_->offer_event(interface_.service_id, instance_, field.event, {field.eventgroup},
                              vsomeip::event_type_e::ET_FIELD);
  }
  application_->offer_service(interface_.service_id, instance_, interface_.major_version, interface_.minor_version);
  const std::lock_guard<std::mutex> lock(mutex_);
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    Notify(i);
  }
}

void SimulatedService::StopOffer() {
  application_->stop_offer_service(interface_.service_id, instance_, interface_.major_version,
                                   interface_.minor_version);
}

void SimulatedService::Update(std::size_t field, const Payload& value) {
  auto payload = StackApplication::Runtime()->create_payload(value);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!fields_[field].is_set) {
    fields_[field].payload = std::move(payload);
    Notify(field);
  }
}

SimulatedService::Counters SimulatedService::GetCounters() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return counters_;
}

void SimulatedService::RegisterHandler(std::uint16_t method, std::size_t field,
                                       void (SimulatedService::*answer)(std::size_t, const Message&)) {
  application_->register_message_handler(interface_.service_id, instance_, method,
                                         [self = shared_from_this(), field, answer](const Message& request) {
                                           if (self->HasRightVersion(request)) {
                                             (self.get()->*answer)(field, request);
                                           }
                                         });
}

void SimulatedService::AnswerGetter(std::size_t field, const Message& request) {
  std::shared_ptr<vsomeip::payload> payload;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    payload = fields_[field].payload;
    ++counters_.gets;
  }
  Respond(request, payload);
}

void SimulatedService::AnswerSetter(std::size_t field, const Message& request) {
  const auto payload = request->get_payload();
  try {
    CheckPayload(*interface_.fields[field].type, {payload->get_data(), payload->get_data() + payload->get_length()});
  } catch (const PayloadError& error) {
    refused_.Write(interface_.name + '/' + interface_.fields[field].name + ": refused to set: " + error.what());
    RespondError(request, vsomeip::return_code_e::E_MALFORMED_MESSAGE);
    return;
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    fields_[field] = {payload, true};
    ++counters_.sets;
    Notify(field);
  }
  Respond(request, payload);
}

bool SimulatedService::HasRightVersion(const Message& request) const {
  if (request->get_interface_version() == interface_.major_version) {
    return true;
  }
  RespondError(request, vsomeip::return_code_e::E_WRONG_INTERFACE_VERSION);
  return false;
}

void SimulatedService::Respond(const Message& request, const std::shared_ptr<vsomeip::payload>& payload) const {
  if (request->get_message_type() != vsomeip::message_type_e::MT_REQUEST) {
    return;
  }
  const Message response = StackApplication::Runtime()->create_response(request);
  response->set_payload(payload);
  try {
    application_->send(response);
  } catch (const std::length_error& error) {
    too_large_.Write(interface_.name + ": " + error.what());
    RespondError(request, vsomeip::return_code_e::E_NOT_OK);
  }
}

void SimulatedService::RespondError(const Message& request, vsomeip::return_code_e code) const {
  if (request->get_message_type() != vsomeip::message_type_e::MT_REQUEST) {
    return;
  }
  const Message response = StackApplication::Runtime()->create_response(request);
  response->set_message_type(vsomeip::message_type_e::MT_ERROR);
  response->set_return_code(code);
  application_->send(response);
}

void SimulatedService::Notify(std::size_t field) {
  application_->notify(interface_.service_id, instance_, interface_.fields[field].event, fields_[field].payload);
  ++counters_.notifications;
}

}  // namespace tarn7::tool
