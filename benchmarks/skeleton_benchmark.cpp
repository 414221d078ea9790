// From an update of an offered field to the sample at its subscribers, through the product's skeleton and beside the
// same notification through the stack's bare interface: same stack, same application object, same subscribers.
#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/bare_client.h"
#include "benchmarks/comparison.h"
#include "benchmarks/values.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_descriptors.h"
#include "platform/include/connection.h"
#include "platform/include/runtime.h"

namespace {

using ara::com::internal::vsomeip::runtime::VSomeIPConnection;
using benchmarks::Signal;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;
namespace descriptors = kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors;
using Field = descriptors::destinations;
using Service = descriptors::internal::Service;

constexpr vsomeip::instance_t kOurs = 0x0B01;
constexpr vsomeip::instance_t kBare = 0x0B02;
constexpr int kUpdatesPerBatch = 20;
constexpr int kBatches = 200;
constexpr double kWantedRatio = 1.10;

/// Raised when as many notifications have come as there are subscribers.
class Arrivals {
 public:
  void Expect(std::size_t count) { left_ = count; }
  void Add() {
    if (--left_ == 0) {
      all_.Raise();
    }
  }
  void Await() { all_.Await(); }

 private:
  std::atomic<std::size_t> left_{0};
  Signal all_;
};

/// A node of its own that follows the field of both instances.
class Subscriber {
 public:
  Subscriber(int number, Arrivals& arrivals)
      : application_(vsomeip::runtime::get()->create_application("benchmark-subscriber-" + std::to_string(number))) {
    if (!application_->init()) {
      throw std::runtime_error("the stack cannot be started");
    }
    thread_ = std::thread([this] { application_->start(); });
    for (const vsomeip::instance_t instance : {kOurs, kBare}) {
      Signal first;
      std::atomic<bool> isFirst{true};
      application_->register_message_handler(Service::service_id, instance, Field::event_id, [&](const auto&) {
        if (isFirst.exchange(false)) {
          first.Raise();
        }
      });
      application_->request_service(Service::service_id, instance, Service::major_version);
      benchmarks::AwaitService(*application_, Service::service_id, instance);
      application_->request_event(Service::service_id, instance, Field::event_id, {Field::event_id},
                                  vsomeip::event_type_e::ET_FIELD);
      application_->subscribe(Service::service_id, instance, Field::event_id, Service::major_version);
      first.Await();
      application_->register_message_handler(Service::service_id, instance, Field::event_id,
                                             [&arrivals](const auto&) { arrivals.Add(); });
    }
  }
  ~Subscriber() {
    application_->stop();
    thread_.join();
  }
  Subscriber(const Subscriber&) = delete;
  Subscriber& operator=(const Subscriber&) = delete;

 private:
  std::shared_ptr<vsomeip::application> application_;
  std::thread thread_;
};

/// The same value offered twice: by the product's skeleton, and by hand.
class Offers {
 public:
  Offers() : skeleton_({ara::com::InstanceIdentifier(std::to_string(kOurs))}) {
    skeleton_.destinations.Update({});
    skeleton_.rangeOnRouteValues.Update({});
    skeleton_.routeBasedResidualEnergyValues.Update({});
    skeleton_.rwmStatus.Update({});
    skeleton_.targetSocChargings.Update({});
    skeleton_.OfferService();
    application_->offer_event(Service::service_id, kBare, Field::event_id, {Field::event_id},
                              vsomeip::event_type_e::ET_FIELD);
    application_->offer_service(Service::service_id, kBare, Service::major_version, Service::minor_version);
    Notify(vsomeip::runtime::get()->create_payload({0, 0, 0, 0}));
  }

  void Update(const Field::ValueType& value) { skeleton_.destinations.Update(value); }
  void Notify(const std::shared_ptr<vsomeip::payload>& payload) {
    application_->notify(Service::service_id, kBare, Field::event_id, payload);
  }

 private:
  std::shared_ptr<vsomeip::application> application_ = [] {
    ara::com::internal::Runtime::Init();  // starts the stack
    return VSomeIPConnection::instance_.Application();
  }();
  RouteBasedEnergyContentsSkeleton skeleton_;
};

ara::com::internal::vsomeip::common::ByteVector Encode(const Field::ValueType& value) {
  ara::com::internal::vsomeip::common::ByteVector bytes;
  ara::com::internal::vsomeip::common::SequenceContainerSerializer<Field::ValueType>(value).pushbackTo(bytes);
  return bytes;
}

void Update(benchmark::State& state, Offers& offers, Arrivals& arrivals, std::size_t subscribers, std::size_t records) {
  // Two values in turns: a stack does not notify a field's value that has not changed.
  Field::ValueType values[] = {benchmarks::FilledValue<Field>(records), benchmarks::FilledValue<Field>(records)};
  *values[1][0].member0 += 1;
  const ara::com::internal::vsomeip::common::ByteVector payloads[] = {Encode(values[0]), Encode(values[1])};
  unsigned turnOfOurs = 0;
  unsigned turnOfBare = 0;
  const auto awaited = [&](auto send) {
    return [&, send] {
      arrivals.Expect(subscribers);
      send();
      arrivals.Await();
    };
  };
  benchmarks::Compare(state, kUpdatesPerBatch, awaited([&] { offers.Update(values[(turnOfOurs = 1 - turnOfOurs)]); }),
                      awaited([&] {
                        offers.Notify(vsomeip::runtime::get()->create_payload(payloads[(turnOfBare = 1 - turnOfBare)]));
                      }));
  state.counters["bytes"] = static_cast<double>(payloads[0].size() * subscribers);
  if (records == 1) {
    state.counters["at_most"] = kWantedRatio;
  }
  state.SetLabel("bare interface");
}

void Run() {
  Offers offers;
  Arrivals arrivals;
  std::vector<std::unique_ptr<Subscriber>> subscribers;
  const auto add = [&](std::size_t count, std::size_t records) {
    const std::string name = "update routebasedenergycontents, records: " + std::to_string(records) +
                             ", subscribers: " + std::to_string(count);
    benchmark::RegisterBenchmark(
        name.c_str(),
        [&offers, &arrivals, &subscribers, count, records](benchmark::State& state) {
          while (subscribers.size() < count) {
            subscribers.push_back(std::make_unique<Subscriber>(static_cast<int>(subscribers.size()), arrivals));
          }
          Update(state, offers, arrivals, count, records);
        })
        ->UseManualTime()
        ->Iterations(benchmarks::Rounds(kBatches));
  };
  for (const std::size_t records : {std::size_t{1}, std::size_t{10}, std::size_t{30}, std::size_t{300}}) {
    add(1, records);
  }
  add(10, 1);
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::TakeOptions(argc, argv);
  Run();
}
