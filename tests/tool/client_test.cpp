#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tarn7/client/instance_changes.h"
#include "tools/tarn7/client/limited_report.h"
#include "tools/tarn7/client/sample_queue.h"

namespace tarn7::tool {
namespace {

TEST(SampleQueue, IsBoundedByNumberAndByBytesAndKeepsTheNewest) {
  SampleQueue queue;
  for (std::size_t i = 0; i < SampleQueue::kMaxSamples + 2; ++i) {
    queue.Push(Payload(i));
  }
  EXPECT_EQ(queue.Take()->size(), 2U) << "the oldest that is left";
  queue.Push(Payload(SampleQueue::kMaxBytes / 2));
  queue.Push(Payload(SampleQueue::kMaxBytes / 2));
  queue.Push(Payload(1));
  EXPECT_EQ(queue.Take()->size(), SampleQueue::kMaxBytes / 2);
  EXPECT_EQ(queue.Take()->size(), 1U);
  EXPECT_EQ(queue.Take(), std::nullopt);
  EXPECT_EQ(queue.CountDropped(), 2 + (SampleQueue::kMaxSamples - 1) + 1);
  queue.Push(Payload(1));
  queue.Push(Payload(SampleQueue::kMaxBytes + 1));
  EXPECT_EQ(queue.Take()->size(), SampleQueue::kMaxBytes + 1) << "alone, whatever its size";
}

TEST(InstanceChanges, TellsAtOnceThenSeldomAndLastHowItIs) {
  constexpr std::chrono::milliseconds kInterval{20};
  const Interface interface {};
  const InstanceChanges::Instance instances[] = {{&interface, 1}, {&interface, 2}};
  std::vector<std::string> told;
  std::vector<Loop::TimePoint> times;
  Loop loop;
  InstanceChanges changes(
      loop,
      [&](const InstanceChanges::Instance& instance, bool found) {
        told.push_back((found ? "+" : "-") + std::to_string(instance.second));
        times.push_back(Loop::Clock::now());
      },
      kInterval);
  const auto wait_for = [&](std::size_t count) {
    return loop.RunUntil(Loop::Clock::now() + std::chrono::seconds(20), [&] { return told.size() == count; });
  };
  changes.Report(instances[1], false);  // no news
  for (int i = 0; i < 1000; ++i) {
    changes.Report(instances[0], i % 2 == 0);
  }
  changes.Report(instances[0], true);
  ASSERT_TRUE(wait_for(1));
  for (int i = 0; i < 1001; ++i) {
    changes.Report(instances[0], i % 2 != 0);
  }
  changes.Report(instances[1], true);
  ASSERT_TRUE(wait_for(3));
  EXPECT_THAT(told, testing::ElementsAre("+1", "+2", "-1")) << "one does not wait for another";
  EXPECT_GE(times[2] - times[0], kInterval);
  changes.Report(instances[0], true);
  changes.Report(instances[0], false);
  EXPECT_FALSE(loop.RunUntil(Loop::Clock::now() + 3 * kInterval, [&] { return told.size() > 3; })) << "as it was told";
  changes.Report(instances[0], true);
  EXPECT_TRUE(wait_for(4)) << "nothing is left of the interval";

  std::atomic<bool> done{false};
  std::thread stack([&] {
    for (int i = 0; i < 10'000; ++i) {
      changes.Report(instances[0], i % 2 == 0);
    }
    done = true;
  });
  EXPECT_TRUE(
      loop.RunUntil(Loop::Clock::now() + std::chrono::seconds(20), [&] { return done && told.back() == "-1"; }));
  stack.join();
}

TEST(LimitedReport, SaysHowManyLinesItLeftOut) {
  using ara::com::internal::vsomeip::common::LogLimit;
  LogLimit limit;
  const LogLimit::Clock::time_point begin = LogLimit::Clock::now();
  int written = 0;
  for (int i = 0; i < 100'000; ++i) {
    written += limit.Admit(begin + std::chrono::milliseconds(i) / 10).has_value() ? 1 : 0;
  }
  EXPECT_EQ(written, LogLimit::kAtOnce + 9) << "in ten seconds";
  EXPECT_EQ(limit.Admit(begin + std::chrono::seconds(11)), 9'999U);
  EXPECT_EQ(limit.Admit(begin + std::chrono::seconds(60)), 0U);

  LimitedReport report;
  testing::internal::CaptureStderr();
  for (int i = 0; i < 1000; ++i) {
    report.Write("a\x1b[2Jb");
  }
  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_THAT(lines, testing::StartsWith("a\\u001b[2Jb\na\\u001b[2Jb\n"));
  EXPECT_LT(std::count(lines.begin(), lines.end(), '\n'), 100);
}

}  // namespace
}  // namespace tarn7::tool
