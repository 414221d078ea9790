// Encoding and decoding of field values, beside a memcpy of the same bytes.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/allocation_counter.h"
#include "benchmarks/comparison.h"
#include "benchmarks/values.h"
#include "interfaces/chargetimemanager/chargetimemanager_descriptors.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_descriptors.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"

namespace {

using ara::com::internal::vsomeip::common::ByteVector;
using ara::com::internal::vsomeip::common::DeserializeFieldValue;
using ara::com::internal::vsomeip::common::SequenceContainerSerializer;

constexpr std::size_t kRecordsPerBatch = 2000;  // so that small values fill a batch that a clock can measure

/// Compares `codec` with copying `bytes`.
template <typename Codec>
void CompareWithCopy(benchmark::State& state, std::size_t records, const ByteVector& bytes, Codec codec) {
  const std::size_t before = benchmarks::AllocationCount();
  codec();
  state.counters["allocations"] = static_cast<double>(benchmarks::AllocationCount() - before);
  state.counters["bytes"] = static_cast<double>(bytes.size());

  std::vector<unsigned char> copy(bytes.size());
  const int calls = static_cast<int>(std::max<std::size_t>(1, kRecordsPerBatch / records));
  benchmarks::Compare(state, calls, codec, [&] {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  });
  state.SetLabel("memcpy");
}

template <typename Field>
void EncodeIntoCapacity(benchmark::State& state, std::size_t records) {
  const auto value = benchmarks::FilledValue<Field>(records);
  ByteVector out = benchmarks::FilledPayload<Field>(records);
  const ByteVector bytes = out;
  CompareWithCopy(state, records, bytes, [&] {
    out.clear();
    SequenceContainerSerializer<typename Field::ValueType>(value).pushbackTo(out);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}

template <typename Field>
void EncodeIntoEmpty(benchmark::State& state, std::size_t records) {
  const auto value = benchmarks::FilledValue<Field>(records);
  CompareWithCopy(state, records, benchmarks::FilledPayload<Field>(records), [&] {
    ByteVector out;
    SequenceContainerSerializer<typename Field::ValueType>(value).pushbackTo(out);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  });
}

template <typename Field>
void Decode(benchmark::State& state, std::size_t records) {
  const ByteVector bytes = benchmarks::FilledPayload<Field>(records);
  CompareWithCopy(state, records, bytes, [&] {
    const auto value = DeserializeFieldValue<typename Field::ValueType>(bytes.data(), bytes.size());
    benchmark::DoNotOptimize(value.data());
    benchmark::ClobberMemory();
  });
}

template <typename Field>
void RegisterField() {
  const std::string field = std::string(Field::Service::name) + "/" + Field::name;
  for (const std::size_t records : {1U, 100U, 10'000U}) {
    const auto add = [&](const char* what, void (*function)(benchmark::State&, std::size_t)) {
      const std::string name = std::string(what) + " " + field + ", records: " + std::to_string(records);
      benchmark::RegisterBenchmark(name.c_str(), function, records)
          ->UseManualTime()
          ->Iterations(benchmarks::Rounds(60));
    };
    add("encode", EncodeIntoCapacity<Field>);
    add("encode into empty", EncodeIntoEmpty<Field>);
    add("decode", Decode<Field>);
  }
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kro::services;
  RegisterField<energysystem::energysystem_binding::vsomeip::descriptors::highVoltageBatteries>();
  RegisterField<routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors::residualEnergies>();
  RegisterField<chargetimemanager::chargetimemanager_binding::vsomeip::descriptors::chargeTimeCalculations>();
  benchmarks::TakeOptions(argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
