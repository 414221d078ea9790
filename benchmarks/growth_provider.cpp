// The provider's process of the growth benchmarks: growth_provider INSTANCE
//
// Offers that instance of energysystem, with a getter that answers only when as many requests wait as it was told:
//   hold COUNT            from now on
//   offer FIRST COUNT     offers as many instances of routebasedconsumption, whose status can be read
//   withdraw FIRST COUNT
#include <cstddef>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "benchmarks/application.h"
#include "benchmarks/child_commands.h"
#include "benchmarks/processors.h"
#include "benchmarks/provider.h"
#include "benchmarks/values.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"

namespace {

using benchmarks::SmallField;
namespace routebasedconsumption = kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip;
using ManyField = routebasedconsumption::descriptors::status;
using ManyService = ManyField::Service;

/// The getter's requests that wait.
class HeldRequests {
 public:
  explicit HeldRequests(vsomeip::application& application) : application_(application) {}

  void Hold(std::size_t count) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!requests_.empty()) {
      std::cerr << "only " << requests_.size() << " of " << count_ << " requests have arrived" << std::endl;
      requests_.clear();
    }
    count_ = count;
  }
  void Add(const std::shared_ptr<vsomeip::message>& request) {
    std::vector<std::shared_ptr<vsomeip::message>> complete;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      requests_.push_back(request);
      if (requests_.size() != count_) {
        return;
      }
      complete.swap(requests_);
    }
    for (const auto& held : complete) {
      const auto response = vsomeip::runtime::get()->create_response(held);
      response->set_payload(value_);
      application_.send(response);
    }
  }

  const std::shared_ptr<vsomeip::payload>& Value() const { return value_; }

 private:
  vsomeip::application& application_;
  const std::shared_ptr<vsomeip::payload> value_ =
      vsomeip::runtime::get()->create_payload(benchmarks::FilledPayload<SmallField>(benchmarks::kSmallRecords));
  std::mutex mutex_;  // guards the members below
  std::vector<std::shared_ptr<vsomeip::message>> requests_;
  std::size_t count_ = 1;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: growth_provider INSTANCE" << std::endl;
    return 1;
  }
  const auto instance = static_cast<vsomeip::instance_t>(std::stoi(argv[1]));
  benchmarks::ChildCommands commands;
  benchmarks::BindToProcessor(benchmarks::kServerProcessor);
  const benchmarks::Application started("tarn7_benchmark_provider");
  vsomeip::application& application = *started.Get();

  HeldRequests requests(application);
  application.register_message_handler(SmallField::Service::service_id, instance, SmallField::getter_method_id,
                                       [&requests](const auto& request) { requests.Add(request); });
  const auto status = vsomeip::runtime::get()->create_payload(benchmarks::FilledPayload<ManyField>(1));
  application.register_message_handler(ManyService::service_id, vsomeip::ANY_INSTANCE, ManyField::getter_method_id,
                                       [&](const std::shared_ptr<vsomeip::message>& request) {
                                         const auto response = vsomeip::runtime::get()->create_response(request);
                                         response->set_payload(status);
                                         application.send(response);
                                       });
  benchmarks::OfferEvent<SmallField>(application, instance);
  benchmarks::OfferService<SmallField::Service>(application, instance);
  application.notify(SmallField::Service::service_id, instance, SmallField::event_id, requests.Value());

  commands.Obey([&](std::istream& command) {
    std::string what;
    std::size_t first = 0;
    std::size_t count = 0;
    command >> what >> first >> count;
    if (what == "hold") {
      requests.Hold(first);
    }
    for (std::size_t many = first; many < first + count; ++many) {
      if (what == "offer") {
        benchmarks::OfferService<ManyService>(application, static_cast<vsomeip::instance_t>(many));
      } else {
        application.stop_offer_service(ManyService::service_id, static_cast<vsomeip::instance_t>(many),
                                       ManyService::major_version, ManyService::minor_version);
      }
    }
  });
}
