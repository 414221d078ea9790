#include "core_types/result.h"

#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "core_types/com_error_domain.h"
#include "core_types/optional.h"

namespace {

using ara::core::ErrorCode;
using ara::core::Optional;
using ara::core::Result;

TEST(Result, HoldsAValueOrAnError) {
  Result<std::string> value(std::string("text"));
  ASSERT_TRUE(value.HasValue());
  EXPECT_EQ(value.value(), "text");
  EXPECT_EQ(value.ValueOr("other"), "text");
  EXPECT_EQ(std::move(value).ValueOrThrow(), "text");

  const Result<std::string> error(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
  ASSERT_FALSE(error);
  EXPECT_EQ(error.error().Value(), 1);
  EXPECT_EQ(error.ValueOr("other"), "other");
  EXPECT_THROW(error.ValueOrThrow(), ara::com::ComErrorDomainException);
}

// The texts go to standard output; a death test watches standard error.
template <typename Access>
void WithOutputOnStandardError(Access access) {
  dup2(2, 1);
  access();
}

TEST(ResultDeathTest, ReadingTheWrongSideEndsTheProcess) {
  const Result<int> error(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
  EXPECT_DEATH(WithOutputOnStandardError([&] { (void)error.value(); }), "__ value\\(\\) called but NOT a value!\n");
  const Result<int> value(1);
  EXPECT_DEATH(WithOutputOnStandardError([&] { (void)value.error(); }), "__ error\\(\\) called but NOT an error!\n");
}

TEST(Optional, CopiesAreDeepAndMovesTakeTheValueAlong) {
  Optional<std::vector<int>> one = std::vector<int>{1, 2};
  Optional<std::vector<int>> copy = one;
  copy->push_back(3);
  EXPECT_EQ(one->size(), 2U);
  EXPECT_NE(one, copy);

  const auto* const address = &*one;
  Optional<std::vector<int>> moved = std::move(one);
  EXPECT_EQ(&*moved, address);
  EXPECT_FALSE(one.has_value());
  EXPECT_EQ(one, Optional<std::vector<int>>());
  EXPECT_THROW((void)one.value(), std::bad_optional_access);

  one = moved;
  moved.reset();
  EXPECT_EQ(one->size(), 2U);
  one = *one;  // from its own value
  EXPECT_EQ(*one, (std::vector<int>{1, 2}));
}

}  // namespace
