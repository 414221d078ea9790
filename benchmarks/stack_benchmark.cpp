// A round trip through the stack's bare interface, beside a bare UDP echo of the same number of bytes; and how long a
// large value takes to its subscriber, beside memcpy of as many bytes. Two processes each, at the same processors.
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <vsomeip/vsomeip.hpp>

#include "benchmarks/application.h"
#include "benchmarks/bare_client.h"
#include "benchmarks/comparison.h"
#include "benchmarks/processors.h"
#include "benchmarks/provider.h"
#include "benchmarks/udp_echo.h"

namespace {

using benchmarks::chargeTimeCalculations;

constexpr std::size_t kHeaderSize = 16;
constexpr int kCallsPerBatch = 25;
constexpr int kBatches = 400;
constexpr double kWantedRatio = WANTED_RATIO;
constexpr std::chrono::milliseconds kPause{50};

void RoundTrip(benchmark::State& state, benchmarks::BareClient& client, benchmarks::UdpEcho& echo,
               std::size_t payloadSize) {
  const std::vector<vsomeip::byte_t> bytes(payloadSize, 0x5A);
  std::vector<unsigned char> datagram(kHeaderSize + payloadSize, 0x5A);
  const auto setter = chargeTimeCalculations::setter_method_id;  // answers with what it is called with
  client.Listen(setter);
  benchmarks::Compare(
      state, kCallsPerBatch,
      [&] {
        const auto response = client.Call(setter, vsomeip::runtime::get()->create_payload(bytes));
        if (response->get_payload()->get_length() != payloadSize) {
          throw std::runtime_error("not what was sent");
        }
      },
      [&] { echo.Call(datagram); });
  state.counters["at_most"] = kWantedRatio;
  state.SetLabel("UDP echo");
}

// From the request that makes the provider notify, to the value in the handler. Large values come now and then, not one
// after the other. Nothing may be lost on the way: a value that does not come ends the benchmark as failed.
void StateLatency(benchmark::State& state, benchmarks::BareClient& client, std::uint32_t size, int callsPerBatch) {
  std::vector<vsomeip::byte_t> request(sizeof(size));
  std::memcpy(request.data(), &size, sizeof(size));
  const std::vector<unsigned char> value(size, 0x5A);
  std::vector<unsigned char> copy(size);
  const auto fetch = [&] {
    client.Send(benchmarks::kNotifyBytesMethod, vsomeip::runtime::get()->create_payload(request),
                vsomeip::message_type_e::MT_REQUEST_NO_RETURN);
    if (client.Receive()->get_payload()->get_length() != size) {
      throw std::runtime_error("not what was notified");
    }
  };
  const auto copyBytes = [&] {
    std::memcpy(copy.data(), value.data(), size);
    benchmark::DoNotOptimize(copy.data());
  };
  benchmarks::CompareTimes(
      state,
      [&] {
        std::this_thread::sleep_for(kPause);
        return benchmarks::SecondsPerCall(callsPerBatch, fetch);
      },
      [&] { return benchmarks::SecondsPerCall(callsPerBatch, copyBytes); });
  state.counters["bytes"] = size;
  state.SetLabel("memcpy");
}

void Run(const benchmarks::Provider& provider, benchmarks::UdpEcho& echo) {
  using Service = chargeTimeCalculations::Service;
  const benchmarks::Application application("tarn7_benchmark_client");
  benchmarks::BareClient client(application.Get(), Service::service_id, provider.BareInstance(),
                                Service::major_version);
  for (const std::size_t size : {32U, 1024U}) {
    const std::string name = "stack round trip, payload bytes: " + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&, size](benchmark::State& state) { RoundTrip(state, client, echo, size); })
        ->UseManualTime()
        ->Iterations(kBatches);
  }
  benchmarks::BareClient subscriber(application.Get(), Service::service_id, provider.BareInstance(),
                                    Service::major_version);
  subscriber.Follow(benchmarks::kBytesEvent);
  for (const std::uint32_t size : {5'000U, 50'000U, 500'000U, 5'000'000U}) {
    const std::string name = "stack state latency, payload bytes: " + std::to_string(size);
    const bool isLarge = size > 100'000;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&, size, isLarge](benchmark::State& state) {
                                   StateLatency(state, subscriber, size, isLarge ? 1 : kCallsPerBatch);
                                 })
        ->UseManualTime()
        ->Iterations(benchmarks::Rounds(isLarge ? 50 : 100));
  }
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::TakeOptions(argc, argv);
  const benchmarks::Provider provider(BENCHMARK_PROVIDER);
  benchmarks::UdpEcho echo;
  benchmarks::BindToProcessor(benchmarks::kClientProcessor);
  Run(provider, echo);
}
