#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <vector>

#include <benchmark/benchmark.h>

namespace benchmarks {

/// Takes the program's options, and ends it where one is unknown.
inline void TakeOptions(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    std::exit(EXIT_FAILURE);
  }
}

template <typename Call>
double SecondsPerCall(int calls, Call& call) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) {
    call();
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() / calls;
}

/// `values` must not be empty.
inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// How often a benchmark compares in one repetition: as often as wanted, or as TARN7_BENCHMARK_ROUNDS says, if that is
/// less. For checks that everything still runs.
inline int Rounds(int wanted) {
  const char* const limit = std::getenv("TARN7_BENCHMARK_ROUNDS");
  return limit == nullptr ? wanted : std::clamp(std::atoi(limit), 1, wanted);
}

/// Times two ways of doing the same thing in turns, so that whatever else the machine does meets both alike. Each is
/// called without arguments and returns the seconds that one item of its work has taken: what goes before and after is
/// not timed. Reports the median of either side, in ns, and the ratio of the two. The benchmark must use manual time,
/// which is our side's. What a side throws ends the benchmark as failed.
template <typename Ours, typename Baseline>
void CompareTimes(benchmark::State& state, Ours ours, Baseline baseline) {
  std::vector<double> ourTimes;
  std::vector<double> baselineTimes;
  bool oursFirst = true;
  try {
    for (auto _ : state) {
      if (oursFirst) {
        ourTimes.push_back(ours());
      }
      baselineTimes.push_back(baseline());
      if (!oursFirst) {
        ourTimes.push_back(ours());
      }
      oursFirst = !oursFirst;
      state.SetIterationTime(ourTimes.back());
    }
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
    return;
  }
  const double ourMedian = Median(ourTimes);
  const double baselineMedian = Median(baselineTimes);
  state.counters["ours_ns"] = ourMedian * 1e9;
  state.counters["baseline_ns"] = baselineMedian * 1e9;
  state.counters["ratio"] = ourMedian / baselineMedian;
}

/// The same for what is timed as a whole, in batches of `calls`.
template <typename Ours, typename Baseline>
void Compare(benchmark::State& state, int calls, Ours ours, Baseline baseline) {
  CompareTimes(
      state, [&] { return SecondsPerCall(calls, ours); }, [&] { return SecondsPerCall(calls, baseline); });
}

}  // namespace benchmarks
