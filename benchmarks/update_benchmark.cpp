// Update of a psd2 link layer end to end: to its return, when the stack has the bytes, and to its arrival in another
// process that follows the field. Beside the same bytes, encoded before, through the stack's bare interface; same
// stack, same application object, same follower. Building and freeing the layers is not timed, but for what Update
// itself replaces.
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/application.h"
#include "benchmarks/comparison.h"
#include "benchmarks/link_layer.h"
#include "benchmarks/shared_arrivals.h"
#include "interfaces/psd2/psd2_descriptors.h"
#include "platform/include/connection.h"
#include "serialization/serializer.h"
#include "tests/support/child_process.h"

namespace {

using ara::com::internal::vsomeip::common::ByteVector;
using ara::com::internal::vsomeip::common::SequenceContainerSerializer;
using ara::com::internal::vsomeip::runtime::VSomeIPConnection;
using benchmarks::LinkLayer;
using kro::services::psd2::skeleton::Psd2Skeleton;
namespace descriptors = kro::services::psd2::psd2_binding::vsomeip::descriptors;
using Field = descriptors::linkLayerLongRange;
using Service = descriptors::internal::Service;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

/// The layer offered twice, by the product's skeleton and by hand, and a process that follows both.
class Map {
 public:
  Map() : skeleton_({ara::com::InstanceIdentifier(std::to_string(ours_))}) {
    skeleton_.automatedParkingLayer.Update({});
    skeleton_.dynamicContentLayer.Update({});
    skeleton_.egoPositionLayer.Update({});
    skeleton_.laneLayer.Update({});
    skeleton_.linkLayerLongRange.Update({});
    skeleton_.linkLayerShortRange.Update({});
    skeleton_.positioningObjectsLayer.Update({});
    skeleton_.timezoneInformation.Update({});
    skeleton_.OfferService();  // starts the stack
    benchmarks::OfferEvent<Field>(Application(), bare_);
    benchmarks::OfferService<Service>(Application(), bare_);
    Notify(vsomeip::runtime::get()->create_payload({0, 0, 0, 0}));
    for (const vsomeip::instance_t instance : {ours_, bare_}) {
      follower_.Tell("listen " + std::to_string(Service::service_id) + " " + std::to_string(instance) + " " +
                     std::to_string(Field::event_id) + " " + std::to_string(Service::major_version));
    }
  }

  template <typename Layer>
  void Update(Layer&& layer) {
    skeleton_.linkLayerLongRange.Update(std::forward<Layer>(layer));
  }
  void Notify(const std::shared_ptr<vsomeip::payload>& payload) {
    Application().notify(Service::service_id, bare_, Field::event_id, payload);
  }

  /// The seconds of `send`, and of that until the follower has the value.
  template <typename Send>
  std::pair<double, double> Time(Send send) {
    arrivals_.Expect(1);
    const auto begin = Clock::now();
    send();
    const double returned = SecondsSince(begin);
    arrivals_.Await();
    return {returned, SecondsSince(begin)};
  }

  unsigned turnOfOurs = 0;
  unsigned turnOfBare = 0;

 private:
  static vsomeip::application& Application() { return *VSomeIPConnection::instance_.Application(); }

  // Apart from other runs on the same machine.
  const vsomeip::instance_t ours_ = static_cast<vsomeip::instance_t>(0x2000 + 2 * (getpid() % 0x4000));
  const vsomeip::instance_t bare_ = static_cast<vsomeip::instance_t>(ours_ + 1);
  benchmarks::SharedArrivals arrivals_;
  support::ChildProcess follower_{BENCHMARK_SUBSCRIBER, {std::to_string(arrivals_.Descriptor())}};
  Psd2Skeleton skeleton_;
};

enum class Way { kCopied, kMoved };
enum class End { kReturned, kArrived };

void Measure(benchmark::State& state, Map& map, std::size_t links, Way way, End end) {
  // Two values in turns, over all benchmarks: a stack does not notify a field's value that has not changed.
  LinkLayer layers[] = {benchmarks::BuildLayer(links), benchmarks::BuildLayer(links)};
  layers[1][0].member0->fill(0x22);
  std::vector<ByteVector> bytes(2);
  for (const int i : {0, 1}) {
    SequenceContainerSerializer<LinkLayer>(layers[i]).pushbackTo(bytes[i]);
  }
  const auto timed = [&map, end](auto send) {
    const auto [returned, arrived] = map.Time(send);
    return end == End::kReturned ? returned : arrived;
  };
  benchmarks::CompareTimes(
      state,
      [&] {
        const LinkLayer& layer = layers[++map.turnOfOurs % 2];
        if (way == Way::kCopied) {
          return timed([&] { map.Update(layer); });
        }
        LinkLayer own = layer;
        return timed([&] { map.Update(std::move(own)); });
      },
      [&] {
        const ByteVector& next = bytes[++map.turnOfBare % 2];
        return timed([&] { map.Notify(vsomeip::runtime::get()->create_payload(next)); });
      });
  state.counters["bytes"] = static_cast<double>(bytes[0].size());
  state.SetLabel("bare interface, encoded before");
}

void Run() {
  Map map;
  const auto add = [&map](const std::string& name, Way way, End end) {
    for (const std::size_t links : {100U, 1000U, 10'000U}) {
      benchmark::RegisterBenchmark(
          (name + ", links: " + std::to_string(links)).c_str(),
          [&map, links, way, end](benchmark::State& state) { Measure(state, map, links, way, end); })
          ->UseManualTime()
          ->Iterations(benchmarks::Rounds(links < 10'000 ? 20 : 3));
    }
  };
  add("update psd2 link layer, to its return", Way::kCopied, End::kReturned);
  add("update psd2 link layer, moved, to its return", Way::kMoved, End::kReturned);
  add("update psd2 link layer, moved, to a subscriber", Way::kMoved, End::kArrived);
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::TakeOptions(argc, argv);
  Run();
}
