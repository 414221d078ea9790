#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <vector>

#include <benchmark/benchmark.h>

namespace benchmarks {

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

/// Times two ways of doing the same thing in turns, a batch of `calls` each, so that whatever else the machine does
/// meets both alike. Reports the median batch of either side per call, in ns, and the ratio of the two. The benchmark
/// must use manual time, which is that of our side's batches. What a call throws ends the benchmark as failed.
template <typename Ours, typename Baseline>
void Compare(benchmark::State& state, int calls, Ours ours, Baseline baseline) {
  std::vector<double> ourTimes;
  std::vector<double> baselineTimes;
  bool oursFirst = true;
  try {
    for (auto _ : state) {
      if (oursFirst) {
        ourTimes.push_back(SecondsPerCall(calls, ours));
      }
      baselineTimes.push_back(SecondsPerCall(calls, baseline));
      if (!oursFirst) {
        ourTimes.push_back(SecondsPerCall(calls, ours));
      }
      oursFirst = !oursFirst;
      state.SetIterationTime(ourTimes.back() * calls);
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

}  // namespace benchmarks
