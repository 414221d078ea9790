// The other process of every round trip: offers energysystem and chargetimemanager straight on the stack's interface,
// twice each. Its standard input names the first instance; the end of the input ends the process.
#include "benchmarks/provider.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "benchmarks/processors.h"
#include "benchmarks/values.h"

namespace {

using Message = std::shared_ptr<vsomeip::message>;
using Payload = std::shared_ptr<vsomeip::payload>;

class Server {
 public:
  Server() : application_(vsomeip::runtime::get()->create_application("tarn7_benchmark_provider")) {
    if (!application_->init()) {
      throw std::runtime_error("the stack cannot be started");
    }
    network_ = std::thread([this] { application_->start(); });
  }
  ~Server() {
    application_->stop();
    network_.join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void OfferEverything(vsomeip::instance_t instance) {
    using benchmarks::chargeTimeCalculations;
    OfferField<benchmarks::SmallField>(instance, benchmarks::kSmallRecords);
    OfferField<benchmarks::LargeField>(instance, benchmarks::kLargeRecords);
    OfferNotifications<benchmarks::SmallField>(instance);
    OfferService<benchmarks::SmallField::Service>(instance);

    OfferField<chargeTimeCalculations>(instance, benchmarks::kSmallRecords);
    OfferNotifications<chargeTimeCalculations>(instance);
    Answer<chargeTimeCalculations>(instance, chargeTimeCalculations::setter_method_id,
                                   [](const Message& request) { return request->get_payload(); });
    OfferBytes<chargeTimeCalculations::Service>(instance);
    OfferService<chargeTimeCalculations::Service>(instance);
  }

 private:
  template <typename Service>
  void OfferService(vsomeip::instance_t instance) {
    application_->offer_service(Service::service_id, instance, Service::major_version, Service::minor_version);
  }

  // A getter that answers with a value that never changes, and a notifier.
  template <typename Field>
  void OfferField(vsomeip::instance_t instance, std::size_t records) {
    const Payload value = vsomeip::runtime::get()->create_payload(benchmarks::FilledPayload<Field>(records));
    Answer<Field>(instance, Field::getter_method_id, [value](const Message&) { return value; });
    OfferFieldEvent(Field::Service::service_id, instance, Field::event_id);
    application_->notify(Field::Service::service_id, instance, Field::event_id, value);
  }

  void OfferFieldEvent(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event) {
    application_->offer_event(service, instance, event, {event}, vsomeip::event_type_e::ET_FIELD,
                              std::chrono::milliseconds::zero(), false, true, nullptr,
                              vsomeip::reliability_type_e::RT_UNRELIABLE);
  }

  template <typename Service>
  void OfferBytes(vsomeip::instance_t instance) {
    const auto notify = [this, instance](std::uint32_t size) {
      auto value = vsomeip::runtime::get()->create_payload();
      value->set_data(std::vector<vsomeip::byte_t>(size, 0x5A));
      application_->notify(Service::service_id, instance, benchmarks::kBytesEvent, std::move(value), true);
    };
    application_->register_message_handler(Service::service_id, instance, benchmarks::kNotifyBytesMethod,
                                           [notify](const Message& request) {
                                             std::uint32_t size = 0;
                                             std::memcpy(&size, request->get_payload()->get_data(), sizeof(size));
                                             notify(size);
                                           });
    OfferFieldEvent(Service::service_id, instance, benchmarks::kBytesEvent);
    notify(1);
  }

  template <typename Field, typename GetPayload>
  void Answer(vsomeip::instance_t instance, vsomeip::method_t method, GetPayload getPayload) {
    application_->register_message_handler(Field::Service::service_id, instance, method,
                                           [this, getPayload](const Message& request) {
                                             const auto response = vsomeip::runtime::get()->create_response(request);
                                             response->set_payload(getPayload(request));
                                             application_->send(response);
                                           });
  }

  template <typename Field>
  void OfferNotifications(vsomeip::instance_t instance) {
    application_->register_message_handler(
        Field::Service::service_id, instance, benchmarks::kNotifyMethod, [this, instance](const Message& request) {
          application_->notify(Field::Service::service_id, instance, Field::event_id, request->get_payload(), true);
        });
  }

  const std::shared_ptr<vsomeip::application> application_;
  std::thread network_;
};

}  // namespace

int main() {
  benchmarks::BindToProcessor(benchmarks::kServerProcessor);
  // A stack may log to standard output: that goes to standard error, and the answers have a stream of their own.
  std::FILE* const answers = fdopen(dup(STDOUT_FILENO), "w");
  dup2(STDERR_FILENO, STDOUT_FILENO);
  Server server;
  for (std::string line; std::getline(std::cin, line);) {
    const int instance = std::stoi(line);
    server.OfferEverything(static_cast<vsomeip::instance_t>(instance));
    server.OfferEverything(static_cast<vsomeip::instance_t>(instance + 1));
    std::fputs("done\n", answers);
    std::fflush(answers);
  }
}
