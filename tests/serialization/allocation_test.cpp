#include <cstdlib>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "ara/com/internal/proxy/event_data_container.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tests/serialization/sample_records.h"

namespace {
std::size_t allocations = 0;
}  // namespace

// Not inlined: the compiler would take malloc and delete, or new and free, for a pair.
__attribute__((noinline)) void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace ara::com::internal::vsomeip::common;

template <typename Call>
std::size_t AllocationsOf(Call call) {
  const std::size_t before = allocations;
  call();
  return allocations - before;
}

TEST(Codec, AllocatesOnlyWhatTheValueIsMadeOf) {
  sample::Everything record;
  record.member0 = true;
  record.member7 = std::vector<std::uint16_t>{1, 2, 3};
  record.member8 = sample::Inner{1U};
  record.member4095 = std::vector<sample::Inner>(5, sample::Inner{2U});
  const std::vector<sample::Everything> value(3, record);

  ByteVector out;
  EXPECT_EQ(AllocationsOf([&] { SequenceContainerSerializer<std::vector<sample::Everything>>(value).pushbackTo(out); }),
            1U)
      << "an empty vector grows once";
  EXPECT_EQ(out.capacity(), out.size());
  out.clear();
  EXPECT_EQ(AllocationsOf([&] { SequenceContainerSerializer<std::vector<sample::Everything>>(value).pushbackTo(out); }),
            0U)
      << "a vector with capacity does not grow";

  const std::vector<sample::Everything> large(10'000, record);
  ByteVector bytes;
  EXPECT_LE(
      AllocationsOf([&] { SequenceContainerSerializer<std::vector<sample::Everything>>(large).pushbackTo(bytes); }),
      4U);
  EXPECT_LT(bytes.capacity(), bytes.size() + bytes.size() / 8);

  // Per record 4 members, the vector of numbers, the nested member, and 5 elements with a member each behind one
  // vector.
  constexpr std::size_t kPerRecord = 4 + 1 + 1 + (1 + 5);
  EXPECT_EQ(AllocationsOf([&] {
              const auto decoded = DeserializeFieldValue<std::vector<sample::Everything>>(out.data(), out.size());
              EXPECT_EQ(decoded.size(), value.size());
            }),
            1 + 3 * kPerRecord);
}

// Giving a slot back is noexcept, so it must not need memory.
TEST(SampleCache, AllocatesNothingOnceItIsMade) {
  using Cache = ara::com::internal::proxy::EventDataContainer<int>;
  const auto cache = std::make_shared<Cache>(3);
  EXPECT_EQ(AllocationsOf([&] {
              for (int round = 0; round < 1000; ++round) {
                const auto one = Cache::Add(cache->Reserve(), round, ara::com::e2exf::ProfileCheckStatus::kOk);
                const auto other = cache->Reserve();
              }
            }),
            0U);
  EXPECT_EQ(cache->GetFreeSampleCount(), 3U);
}

TEST(SampleCache, AValueGoesWithItsSample) {
  using Cache = ara::com::internal::proxy::EventDataContainer<std::shared_ptr<int>>;
  const auto cache = std::make_shared<Cache>(1);
  auto value = std::make_shared<int>(1);
  const std::weak_ptr<int> weak = value;
  Cache::Add(cache->Reserve(), std::move(value), ara::com::e2exf::ProfileCheckStatus::kOk);
  EXPECT_TRUE(weak.expired());
}

}  // namespace
