#include "core_types/result.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
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

TEST(Result, IsEqualToOneThatHoldsTheSame) {
  const Result<int> one(1);
  const Result<int> error(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable));
  EXPECT_EQ(one, Result<int>(1));
  EXPECT_NE(one, Result<int>(2));
  EXPECT_NE(one, error);
  EXPECT_EQ(error, Result<int>(MakeErrorCode(ara::com::ComErrc::kServiceNotAvailable)));
  EXPECT_NE(error, Result<int>(MakeErrorCode(ara::com::ComErrc::kNetworkBindingFailure)));
}

TEST(Optional, ComparesWithValuesOfOtherTypesAndWithNothing) {
  const Optional<std::uint32_t> number = 5;
  EXPECT_TRUE(number == 5 && 5 == number && number == 5L && number == std::uint8_t{5} && number == 5.0);
  EXPECT_TRUE(number != 6 && 6 != number && number != 5.5F);
  EXPECT_FALSE(number != 5 || 5 != number || number == 5.5F);
  EXPECT_TRUE(number != std::nullopt && std::nullopt != number && !(number == std::nullopt));
  const Optional<std::uint32_t> copy = number;
  EXPECT_EQ(copy, 5);
  EXPECT_TRUE(Optional<std::uint32_t>(0) == 0 && Optional<std::int32_t>(0) == 0U);
  const Optional<std::uint32_t> absent;
  EXPECT_TRUE(absent == std::nullopt && std::nullopt == absent && absent != 0);

  // A number is what it is worth, not its bits.
  const Optional<std::uint32_t> highest = 0xFFFFFFFF;
  EXPECT_TRUE(highest != -1 && -1 != highest);
  EXPECT_TRUE(Optional<std::int32_t>(-1) != 0xFFFFFFFFU && Optional<std::int32_t>(-1) == -1L);
  EXPECT_TRUE(Optional<std::uint8_t>(200) != -56);

  // A bool that came from the network may hold any byte.
  bool odd = true;
  const unsigned char byte = 2;
  std::memcpy(&odd, &byte, 1);
  EXPECT_TRUE(Optional<bool>(odd) == Optional<bool>(odd) && Optional<bool>(odd) != Optional<bool>(true));
}

TEST(Optional, TakesWhatItsValueIsMadeOf) {
  Optional<std::string> name = "x";
  EXPECT_EQ(name, "x");
  EXPECT_NE("y", name);
  name = "y";
  EXPECT_EQ(name, std::string("y"));
  name = std::nullopt;
  EXPECT_EQ(name, std::nullopt);
  name = {};
  Optional<std::unique_ptr<int>> owner;
  owner = new int(7);  // explicit in its constructor, like an assignment of std::optional
  EXPECT_EQ(**owner, 7);
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

  EXPECT_THROW((void)std::as_const(one).value(), std::bad_optional_access);

  Optional<std::shared_ptr<int>> owner = std::make_shared<int>(1);
  const std::weak_ptr<int> owned = *owner;
  owner.reset();
  EXPECT_FALSE(owner.has_value());
  EXPECT_TRUE(owned.expired());

  one = moved;
  moved.reset();
  EXPECT_EQ(one->size(), 2U);
  one = *one;  // from its own value
  EXPECT_EQ(*one, (std::vector<int>{1, 2}));
}

}  // namespace
