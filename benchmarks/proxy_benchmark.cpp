// Round trips through the product's proxies, beside the same messages through the stack's bare interface, on the same
// stack, in the same process, to the same process.
#include <functional>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "benchmarks/await.h"
#include "benchmarks/bare_client.h"
#include "benchmarks/comparison.h"
#include "benchmarks/processors.h"
#include "benchmarks/provider.h"
#include "benchmarks/values.h"
#include "interfaces/chargetimemanager/chargetimemanager_proxy.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "platform/include/connection.h"
#include "serialization/deserializer.h"

namespace {

using ara::com::internal::vsomeip::common::DeserializeFieldValue;
using ara::com::internal::vsomeip::runtime::VSomeIPConnection;
using benchmarks::Await;
using benchmarks::BareClient;
using benchmarks::chargeTimeCalculations;
using benchmarks::LargeField;
using benchmarks::SmallField;
using kro::services::chargetimemanager::proxy::ChargeTimeManagerProxy;
using kro::services::energysystem::proxy::EnergySystemProxy;

constexpr int kCallsPerBatch = 25;
constexpr int kBatches = 400;
constexpr double kWantedRatio = 1.10;

/// The product's proxy and the bare client of one interface, each of an instance of its own.
template <typename Proxy, typename Service>
struct Sides {
  explicit Sides(const benchmarks::Provider& provider)
      : proxy(typename Proxy::HandleType(ara::com::InstanceIdentifier(std::to_string(provider.Instance())))),
        bare(VSomeIPConnection::instance_.Application(), Service::service_id, provider.BareInstance(),
             Service::major_version) {
    benchmarks::AwaitService(*VSomeIPConnection::instance_.Application(), Service::service_id, provider.Instance());
  }

  Proxy proxy;
  BareClient bare;
};
using EnergySystem = Sides<EnergySystemProxy, SmallField::Service>;
using ChargeTimeManager = Sides<ChargeTimeManagerProxy, chargeTimeCalculations::Service>;

void CompareWithBare(benchmark::State& state, const std::function<void()>& ours, const std::function<void()>& bare) {
  benchmarks::Compare(state, kCallsPerBatch, ours, bare);
  state.counters["at_most"] = kWantedRatio;
  state.SetLabel("bare interface");
}

template <typename Descriptor>
auto Decode(const vsomeip::message& response) {
  const auto payload = response.get_payload();
  return DeserializeFieldValue<typename Descriptor::ValueType>(payload->get_data(), payload->get_length());
}

template <typename Descriptor, typename Sides, typename Field>
void Get(benchmark::State& state, Sides& sides, Field& field) {
  sides.bare.Listen(Descriptor::getter_method_id);
  CompareWithBare(
      state, [&] { benchmark::DoNotOptimize(Await(field.Get())); },
      [&] { benchmark::DoNotOptimize(sides.bare.Call(Descriptor::getter_method_id, nullptr)); });
}

/// The bare side decodes what it gets as well: what is left is the cost of the calls, without that of the value.
template <typename Descriptor, typename Sides, typename Field>
void GetDecoded(benchmark::State& state, Sides& sides, Field& field) {
  sides.bare.Listen(Descriptor::getter_method_id);
  CompareWithBare(
      state, [&] { benchmark::DoNotOptimize(Await(field.Get())); },
      [&] {
        const auto value = Decode<Descriptor>(*sides.bare.Call(Descriptor::getter_method_id, nullptr));
        benchmark::DoNotOptimize(value.data());
      });
  state.SetLabel("bare interface and decoding");
}

void Set(benchmark::State& state, ChargeTimeManager& sides) {
  const auto value = benchmarks::FilledValue<chargeTimeCalculations>(benchmarks::kSmallRecords);
  const auto bytes = benchmarks::FilledPayload<chargeTimeCalculations>(benchmarks::kSmallRecords);
  const auto method = chargeTimeCalculations::setter_method_id;
  sides.bare.Listen(method);
  CompareWithBare(
      state, [&] { benchmark::DoNotOptimize(Await(sides.proxy.chargeTimeCalculations.Set(value))); },
      [&] { benchmark::DoNotOptimize(sides.bare.Call(method, vsomeip::runtime::get()->create_payload(bytes))); });
}

/// From a request that makes the provider notify, which both sides send through the bare interface, to the sample in
/// the application's hands.
class Notification {
 public:
  Notification(const benchmarks::Provider& provider, EnergySystem& sides)
      : bare_(sides.bare),
        field_(sides.proxy.highVoltageBatteries),
        trigger_(VSomeIPConnection::instance_.Application(), SmallField::Service::service_id, provider.Instance(),
                 SmallField::Service::major_version) {
    field_.SetReceiveHandler([sampled = sampled_, &field = field_] {
      field.GetNewSamples([&](auto sample) {
        benchmark::DoNotOptimize(sample->data());
        sampled->Raise();
      });
    });
    field_.Subscribe(4);
    sampled_->Await();  // the value as it stands
    bare_.Follow(SmallField::event_id);
  }

  void Measure(benchmark::State& state) {
    const auto payload =
        vsomeip::runtime::get()->create_payload(benchmarks::FilledPayload<SmallField>(benchmarks::kSmallRecords));
    const auto type = vsomeip::message_type_e::MT_REQUEST_NO_RETURN;
    CompareWithBare(
        state,
        [&] {
          trigger_.Send(benchmarks::kNotifyMethod, payload, type);
          sampled_->Await();
        },
        [&] {
          bare_.Send(benchmarks::kNotifyMethod, payload, type);
          benchmark::DoNotOptimize(bare_.Receive());
        });
  }

 private:
  const std::shared_ptr<benchmarks::Signal> sampled_ = std::make_shared<benchmarks::Signal>();
  BareClient& bare_;
  decltype(EnergySystemProxy::highVoltageBatteries) field_;
  BareClient trigger_;
};

void Run(const benchmarks::Provider& provider) {
  EnergySystem energySystem(provider);
  ChargeTimeManager chargeTimeManager(provider);
  Notification notification(provider, energySystem);
  const auto add = [](const char* name, auto function) {
    benchmark::RegisterBenchmark(name, function)->UseManualTime()->Iterations(benchmarks::Rounds(kBatches));
  };
  add("get energysystem, records: 1",
      [&](benchmark::State& state) { Get<SmallField>(state, energySystem, energySystem.proxy.highVoltageBatteries); });
  add("get energysystem, records: 30",
      [&](benchmark::State& state) { Get<LargeField>(state, energySystem, energySystem.proxy.lowVoltageBatteries); });
  add("get energysystem, records: 30, decoded", [&](benchmark::State& state) {
    GetDecoded<LargeField>(state, energySystem, energySystem.proxy.lowVoltageBatteries);
  });
  add("get chargetimemanager, records: 1", [&](benchmark::State& state) {
    Get<chargeTimeCalculations>(state, chargeTimeManager, chargeTimeManager.proxy.chargeTimeCalculations);
  });
  add("set chargetimemanager, records: 1", [&](benchmark::State& state) { Set(state, chargeTimeManager); });
  add("notify energysystem, records: 1", [&](benchmark::State& state) { notification.Measure(state); });
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::TakeOptions(argc, argv);
  const benchmarks::Provider provider(BENCHMARK_PROVIDER);
  benchmarks::BindToProcessor(benchmarks::kClientProcessor);
  Run(provider);
}
