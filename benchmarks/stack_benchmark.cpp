// A round trip through the stack's bare interface, beside a bare UDP echo of the same number of bytes. Two processes
// each, at the same processors.
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <vsomeip/vsomeip.hpp>

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
constexpr double kWantedRatio = 3;

class Application {
 public:
  Application() : application_(vsomeip::runtime::get()->create_application("tarn7_benchmark_client")) {
    if (!application_->init()) {
      throw std::runtime_error("the stack cannot be started");
    }
    network_ = std::thread([this] { application_->start(); });
  }
  ~Application() {
    application_->stop();
    network_.join();
  }
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  const std::shared_ptr<vsomeip::application>& Get() const { return application_; }

 private:
  const std::shared_ptr<vsomeip::application> application_;
  std::thread network_;
};

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

void Run(const benchmarks::Provider& provider, benchmarks::UdpEcho& echo) {
  using Service = chargeTimeCalculations::Service;
  const Application application;
  benchmarks::BareClient client(application.Get(), Service::service_id, provider.BareInstance(),
                                Service::major_version);
  for (const std::size_t size : {32U, 1024U}) {
    const std::string name = "stack round trip, payload bytes: " + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&, size](benchmark::State& state) { RoundTrip(state, client, echo, size); })
        ->UseManualTime()
        ->Iterations(kBatches);
  }
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return EXIT_FAILURE;
  }
  const benchmarks::Provider provider(BENCHMARK_PROVIDER);
  benchmarks::UdpEcho echo;
  benchmarks::BindToProcessor(benchmarks::kClientProcessor);
  Run(provider, echo);
}
