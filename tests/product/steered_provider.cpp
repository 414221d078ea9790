// Offers one service straight on the stack's interface and does what its standard input says, a command a line:
//   offer SERVICE INSTANCE MAJOR MINOR FIELD...   with FIELD the getter's method id; each field is a getter and an
//   event set FIELD HEX      the field's value: answered to getters and notified fill FIELD COUNT   a value of COUNT
//   records without members fail FIELD HEX     getters are answered with an error that carries these bytes withdraw
//   takes the offer back; it can be offered again refuse FIELD       refuses subscriptions of the field from now on
//   accept FIELD       accepts them again
// Numbers are hexadecimal. Each command is answered with a line "done". The end of the input ends the process.

#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "tests/support/hex.h"

namespace {

class Provider {
 public:
  Provider() : application_(vsomeip::runtime::get()->create_application()) {
    if (!application_->init()) {
      throw std::runtime_error("the stack cannot be started");
    }
    network_ = std::thread([this] { application_->start(); });
  }
  ~Provider() {
    application_->stop();
    network_.join();
  }

  void Execute(const std::string& line) {
    std::istringstream in(line);
    in >> std::hex;
    std::string command;
    in >> command;
    if (command == "offer") {
      Offer(in);
    } else if (command == "withdraw") {
      application_->stop_offer_service(service_, instance_, major_, minor_);
    } else if (command == "refuse" || command == "accept") {
      vsomeip::method_t field = 0;
      in >> field;
      Refuse(static_cast<vsomeip::event_t>(field | 0x8000U), command == "refuse");
    } else if (command == "set" || command == "fail" || command == "fill") {
      vsomeip::method_t field = 0;
      std::string argument;
      in >> field >> argument;
      SetValue(field, command == "fill" ? EmptyRecords(argument) : support::Bytes(argument), command == "fail");
    }
  }

 private:
  static std::vector<vsomeip::byte_t> EmptyRecords(const std::string& count) {
    const auto size = static_cast<std::uint32_t>(4 * std::stoul(count, nullptr, 16));
    std::vector<vsomeip::byte_t> bytes(4 + size);
    for (unsigned i = 0; i < 4; ++i) {
      bytes[i] = static_cast<vsomeip::byte_t>(size >> (24 - 8 * i));
    }
    return bytes;
  }

  void Offer(std::istringstream& in) {
    unsigned major = 0;
    in >> service_ >> instance_ >> major >> minor_;
    major_ = static_cast<vsomeip::major_version_t>(major);
    for (vsomeip::method_t field = 0; in >> field;) {
      const auto event = static_cast<vsomeip::event_t>(field | 0x8000U);
      application_->register_message_handler(
          service_, instance_, field, [this](const std::shared_ptr<vsomeip::message>& request) { Answer(request); });
      OfferEvent(event);
    }
    application_->offer_service(service_, instance_, major_, minor_);
  }

  void OfferEvent(vsomeip::event_t event) {
    application_->offer_event(service_, instance_, event, {event}, vsomeip::event_type_e::ET_FIELD,
                              std::chrono::milliseconds::zero(), false, true, nullptr,
                              vsomeip::reliability_type_e::RT_UNRELIABLE);
  }

#ifdef TARN7_WHOLE_VSOMEIP_INTERFACE
  void Refuse(vsomeip::event_t event, bool isRefused) {
    const vsomeip::subscription_handler_sec_t handler = [isRefused](auto...) { return !isRefused; };
    application_->register_subscription_handler(service_, instance_, event, handler);
  }
#else
  // The embedded stack asks nobody: it refuses what is not offered.
  void Refuse(vsomeip::event_t event, bool isRefused) {
    if (isRefused) {
      application_->stop_offer_event(service_, instance_, event);
    } else {
      OfferEvent(event);
    }
  }
#endif

  void SetValue(vsomeip::method_t field, const std::vector<vsomeip::byte_t>& bytes, bool isError) {
    const auto payload = vsomeip::runtime::get()->create_payload(bytes);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      values_[field] = {payload, isError};
    }
    if (!isError) {
      application_->notify(service_, instance_, static_cast<vsomeip::event_t>(field | 0x8000U), payload);
    }
  }

  void Answer(const std::shared_ptr<vsomeip::message>& request) {
    const auto response = vsomeip::runtime::get()->create_response(request);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      const Value& value = values_[request->get_method()];
      response->set_payload(value.payload);
      if (value.isError) {
        response->set_message_type(vsomeip::message_type_e::MT_ERROR);
        response->set_return_code(vsomeip::return_code_e::E_NOT_OK);
      }
    }
    application_->send(response);
  }

  struct Value {
    std::shared_ptr<vsomeip::payload> payload;
    bool isError = false;
  };

  std::shared_ptr<vsomeip::application> application_;
  std::thread network_;
  vsomeip::service_t service_ = 0;
  vsomeip::instance_t instance_ = 0;
  vsomeip::major_version_t major_ = 0;
  vsomeip::minor_version_t minor_ = 0;
  std::mutex mutex_;  // guards values_
  std::map<vsomeip::method_t, Value> values_;
};

}  // namespace

int main() {
  // A stack may log to standard output: that goes to standard error, and the answers have a stream of their own.
  std::FILE* const answers = fdopen(dup(STDOUT_FILENO), "w");
  dup2(STDERR_FILENO, STDOUT_FILENO);
  Provider provider;
  for (std::string line; std::getline(std::cin, line);) {
    provider.Execute(line);
    std::fputs("done\n", answers);
    std::fflush(answers);
  }
}
