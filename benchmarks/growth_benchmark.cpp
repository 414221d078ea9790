// What grows with the work, and how: the same for more items, in turns with fewer. Both sides report the time of one
// item, so the ratio is 1 where the whole is linear, and below where something is shared among the items.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "ara/com/internal/skeleton/skeleton_field.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_field_impl.h"
#include "benchmarks/application.h"
#include "benchmarks/await.h"
#include "benchmarks/comparison.h"
#include "benchmarks/processors.h"
#include "benchmarks/provider.h"
#include "benchmarks/shared_arrivals.h"
#include "benchmarks/values.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_proxy.h"
#include "platform/include/connection.h"
#include "platform/include/runtime.h"
#include "tests/support/child_process.h"

namespace {

using ara::com::internal::vsomeip::runtime::VSomeIPConnection;
using benchmarks::SmallField;
using Clock = std::chrono::steady_clock;
using kro::services::energysystem::proxy::EnergySystemProxy;
using kro::services::routebasedconsumption::proxy::RouteBasedConsumptionProxy;
using support::ChildProcess;

constexpr std::chrono::seconds kTooLong{10};

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

/// The seconds that one item takes where `size` of them are done at once; as often as a clock needs it for few.
using SecondsPerItem = std::function<double(std::size_t size)>;

SecondsPerItem Repeated(std::size_t items, SecondsPerItem once) {
  return [items, once = std::move(once)](std::size_t size) {
    const std::size_t rounds = std::max<std::size_t>(1, items / size);
    double sum = 0;
    for (std::size_t i = 0; i < rounds; ++i) {
      sum += once(size);
    }
    return sum / static_cast<double>(rounds);
  };
}

/// Compares each size with the next smaller one.
void AddGrowth(const std::string& what, const std::vector<std::size_t>& sizes, int rounds,
               const SecondsPerItem& secondsPerItem) {
  for (std::size_t i = 1; i < sizes.size(); ++i) {
    const std::size_t more = sizes[i];
    const std::size_t fewer = sizes[i - 1];
    benchmark::RegisterBenchmark((what + ", each of " + std::to_string(more)).c_str(),
                                 [=](benchmark::State& state) {
                                   benchmarks::CompareTimes(
                                       state, [&] { return secondsPerItem(more); },
                                       [&] { return secondsPerItem(fewer); });
                                   state.SetLabel("each of " + std::to_string(fewer));
                                 })
        ->UseManualTime()
        ->Iterations(benchmarks::Rounds(rounds));
  }
}

class Instances {
 public:
  std::uint16_t Next() { return next_++; }

 private:
  // Apart from other runs on the same machine.
  std::uint16_t next_ = static_cast<std::uint16_t>(0x2000 + 0x20 * (getpid() % 0x400));
};

/// The provider's process, and what a client does with it.
class Client {
 public:
  Client(ChildProcess& provider, std::uint16_t instance)
      : provider_(provider), handle_(ara::com::InstanceIdentifier(std::to_string(instance))) {}

  /// Getters that are all under way before the first is answered, to the last value in hand.
  double PendingGetters(std::size_t count) {
    EnergySystemProxy& proxy = Proxy();
    Hold(count);
    using Future = decltype(proxy.highVoltageBatteries.Get());
    std::vector<Future> answers;
    answers.reserve(count);
    const auto begin = Clock::now();
    for (std::size_t i = 0; i < count; ++i) {
      answers.push_back(proxy.highVoltageBatteries.Get());
    }
    const auto limit = Clock::now() + kTooLong;
    std::size_t missing = 0;
    for (Future& answer : answers) {
      if (answer.wait_until(limit) != ara::core::future_status::ready) {
        ++missing;
      } else {
        benchmark::DoNotOptimize(answer.get());
      }
    }
    const double seconds = SecondsSince(begin);
    if (missing != 0) {
      proxy_.clear();  // and with it the calls
      throw std::runtime_error(std::to_string(missing) + " of " + std::to_string(count) + " calls are not answered");
    }
    return seconds / static_cast<double>(count);
  }

  /// Proxies of one instance in one process, made and destroyed.
  double Proxies(std::size_t count) const {
    const auto begin = Clock::now();
    {
      std::list<EnergySystemProxy> proxies;
      for (std::size_t i = 0; i < count; ++i) {
        proxies.emplace_back(handle_);
      }
    }
    return SecondsSince(begin) / static_cast<double>(count);
  }

 private:
  EnergySystemProxy& Proxy() {
    if (proxy_.empty()) {
      proxy_.emplace_back(handle_);
      Hold(1);
      while (EnergySystemProxy::FindService(handle_.GetInstanceId()).empty()) {
        std::this_thread::yield();
      }
      benchmarks::Await(proxy_.front().highVoltageBatteries.Get());
    }
    return proxy_.front();
  }

  void Hold(std::size_t count) {
    if (count != held_) {
      provider_.Tell("hold " + std::to_string(count));
      held_ = count;
    }
  }

  ChildProcess& provider_;
  std::size_t held_ = 0;
  const EnergySystemProxy::HandleType handle_;
  std::list<EnergySystemProxy> proxy_;
};

/// The field of an instance that this process offers, and its followers in other processes.
class Topic {
 public:
  Topic(std::uint16_t instance, benchmarks::SharedArrivals& arrivals)
      : instance_(instance), arrivals_(arrivals), binding_(instance) {
    vsomeip::application& application = *VSomeIPConnection::instance_.Application();
    benchmarks::OfferEvent<SmallField>(application, instance);
    benchmarks::OfferService<SmallField::Service>(application, instance);
    values_[1][0].member0 = *values_[0][0].member0 + 1;  // an unchanged value is not notified
    field_.Attach(binding_);
    field_.Update(values_[0]);
  }
  ~Topic() {
    for (auto& process : processes_) {
      process.Kill();
    }
    field_.Detach(binding_);
  }
  Topic(const Topic&) = delete;
  Topic& operator=(const Topic&) = delete;

  void AddProcess(std::size_t proxies) {
    ChildProcess& process =
        processes_.emplace_back(BENCHMARK_SUBSCRIBER, std::vector<std::string>{std::to_string(arrivals_.Descriptor())});
    process.Tell("follow " + std::to_string(instance_) + " " + std::to_string(proxies));
    subscribers_ += proxies;
  }

  /// To the last subscriber's sample.
  double Update() {
    arrivals_.Expect(subscribers_);
    const auto begin = Clock::now();
    field_.Update(values_[++updates_ % 2]);
    arrivals_.Await();
    return SecondsSince(begin) / static_cast<double>(subscribers_);
  }

 private:
  const std::uint16_t instance_;
  benchmarks::SharedArrivals& arrivals_;
  ara::com::internal::vsomeip::skeleton::FieldImpl<SmallField::ValueType, SmallField> binding_;
  ara::com::internal::skeleton::SkeletonField<SmallField::ValueType> field_;
  SmallField::ValueType values_[2] = {benchmarks::FilledValue<SmallField>(benchmarks::kSmallRecords),
                                      benchmarks::FilledValue<SmallField>(benchmarks::kSmallRecords)};
  unsigned updates_ = 0;
  std::list<ChildProcess> processes_;
  std::size_t subscribers_ = 0;
};

/// Topics with so many followers as are asked for, made when they are.
class Topics {
 public:
  Topics(Instances& instances, benchmarks::SharedArrivals& arrivals, bool oneProcess)
      : instances_(instances), arrivals_(arrivals), one_process_(oneProcess) {}

  double Update(std::size_t followers) {
    const auto found = topics_.find(followers);
    if (found != topics_.end()) {
      return found->second.Update();
    }
    Topic& topic = topics_.try_emplace(followers, instances_.Next(), arrivals_).first->second;
    for (std::size_t i = 0; i < (one_process_ ? 1 : followers); ++i) {
      topic.AddProcess(one_process_ ? followers : 1);
    }
    topic.Update();
    return topic.Update();
  }

 private:
  Instances& instances_;
  benchmarks::SharedArrivals& arrivals_;
  const bool one_process_;
  std::map<std::size_t, Topic> topics_;
};

/// Instances that the provider's process offers and withdraws, followed by a search of this process.
class Discovery {
 public:
  explicit Discovery(ChildProcess& provider)
      : provider_(provider), search_(RouteBasedConsumptionProxy::StartFindService([this](auto found, auto) {
          const std::lock_guard<std::mutex> lock(mutex_);
          found_ = found.size();
          has_changed_.notify_all();
        })) {}
  ~Discovery() { RouteBasedConsumptionProxy::StopFindService(search_); }
  Discovery(const Discovery&) = delete;
  Discovery& operator=(const Discovery&) = delete;

  /// From the offers to the search's handler that is given the last.
  double Find(std::size_t count) {
    Offer(0);
    const auto begin = Clock::now();
    Offer(count);
    return SecondsSince(begin) / static_cast<double>(count);
  }
  /// A getter of the last of so many instances that are offered.
  double Get(std::size_t count) {
    Offer(count);
    RouteBasedConsumptionProxy proxy(RouteBasedConsumptionProxy::HandleType(std::to_string(kFirst + count - 1)));
    benchmarks::Await(proxy.status.Get());
    const auto begin = Clock::now();
    for (std::size_t i = 0; i < kCalls; ++i) {
      benchmark::DoNotOptimize(benchmarks::Await(proxy.status.Get()));
    }
    return SecondsSince(begin) / kCalls;
  }
  /// One FindService of one instance, or of any, among so many that are offered.
  double FindOne(std::size_t count) { return Search(count, std::to_string(kFirst + count / 2), 1); }
  double FindAny(std::size_t count) {
    return Search(count, ara::com::InstanceIdentifier::Any(), count) / static_cast<double>(count);
  }

 private:
  static constexpr std::size_t kFirst = 1;
  static constexpr std::size_t kSearches = 20;
  static constexpr std::size_t kCalls = 200;

  double Search(std::size_t count, const ara::com::InstanceIdentifier& wanted, std::size_t expected) {
    Offer(count);
    const auto begin = Clock::now();
    for (std::size_t i = 0; i < kSearches; ++i) {
      if (RouteBasedConsumptionProxy::FindService(wanted).size() != expected) {
        throw std::runtime_error("not all are found");
      }
    }
    return SecondsSince(begin) / kSearches;
  }

  /// That many, from then on.
  void Offer(std::size_t count) {
    const auto tell = [&](const char* what, std::size_t first, std::size_t end) {
      provider_.Tell(std::string(what) + " " + std::to_string(kFirst + first) + " " + std::to_string(end - first));
    };
    if (count > offered_) {
      tell("offer", offered_, count);
    } else if (count < offered_) {
      tell("withdraw", count, offered_);
    }
    offered_ = count;
    AwaitFound(count);
  }
  void AwaitFound(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!has_changed_.wait_for(lock, kTooLong, [&] { return found_ == count; })) {
      throw std::runtime_error(std::to_string(found_) + " instances are found, not " + std::to_string(count));
    }
  }

  ChildProcess& provider_;
  std::mutex mutex_;  // guards found_
  std::condition_variable has_changed_;
  std::size_t found_ = 0;
  std::size_t offered_ = 0;
  const ara::com::FindServiceHandle search_;
};

/// From fork and exec of a client to its being done.
double Start(const std::string& command) {
  const auto begin = Clock::now();
  ChildProcess process(BENCHMARK_SUBSCRIBER, {"-1"});
  process.Tell(command);
  return SecondsSince(begin);
}

void AddStart(const std::string& name, const std::string& ours, const std::string& baseline, const std::string& label) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 benchmarks::CompareTimes(
                                     state, [&] { return Start(ours); }, [&] { return Start(baseline); });
                                 state.SetLabel(label);
                               })
      ->UseManualTime()
      ->Iterations(benchmarks::Rounds(10));
}

void Run(ChildProcess& provider, std::uint16_t instance, Instances& instances) {
  const std::string of = " " + std::to_string(instance);
  AddStart("start, to the first getter's value", "get" + of, "nothing", "no call");
  AddStart("start, first getter beside the bare interface", "get" + of, "bare-get" + of, "bare interface");
  AddStart("start, to the first sample", "sample" + of, "bare-sample" + of, "bare interface");

  ara::com::internal::Runtime::Init();
  Client client(provider, instance);
  AddGrowth("pending getters", {1, 100, 10'000}, 5,
            Repeated(1000, [&](std::size_t count) { return client.PendingGetters(count); }));
  AddGrowth("proxies of one instance", {1, 100, 1000}, 5,
            Repeated(100, [&](std::size_t count) { return client.Proxies(count); }));

  Discovery discovery(provider);
  AddGrowth("instances found", {1, 100, 1000}, 3,
            Repeated(10, [&](std::size_t count) { return discovery.Find(count); }));
  AddGrowth("a getter among instances", {1, 100, 1000}, 5, [&](std::size_t count) { return discovery.Get(count); });
  AddGrowth("FindService of one", {1, 100, 1000}, 5, [&](std::size_t count) { return discovery.FindOne(count); });
  AddGrowth("FindService of any", {1, 100, 1000}, 5, [&](std::size_t count) { return discovery.FindAny(count); });

  benchmarks::SharedArrivals arrivals;
  Topics inOneProcess(instances, arrivals, true);
  Topics inProcesses(instances, arrivals, false);
  const std::vector<std::size_t> followers{1, 10, 100};
  AddGrowth("update, subscribers in one process", followers, 50,
            [&](std::size_t count) { return inOneProcess.Update(count); });
  AddGrowth("update, subscribers in processes", followers, 50,
            [&](std::size_t count) { return inProcesses.Update(count); });
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  benchmarks::TakeOptions(argc, argv);
  Instances instances;
  const std::uint16_t instance = instances.Next();
  ChildProcess provider(BENCHMARK_GROWTH_PROVIDER, {std::to_string(instance)});
  provider.Tell("hold 1");
  benchmarks::BindToProcessor(benchmarks::kClientProcessor);
  Run(provider, instance, instances);
}
