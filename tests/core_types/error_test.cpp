#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "core_types/com_error_domain.h"
#include "core_types/com_exception.h"
#include "core_types/core_error_domain.h"
#include "core_types/future_error_domain.h"

namespace {

using ara::core::ErrorCode;
using ara::core::ErrorDomain;

struct Text {
  const ErrorDomain& domain;
  int code;
  const char* message;
};

TEST(ErrorDomains, NameIdAndMessageOfEveryCode) {
  const auto& core = ara::core::GetCoreErrorDomain();
  const auto& future = ara::core::GetFutureErrorDomain();
  const auto& com = ara::com::GetComErrorDomain();
  EXPECT_STREQ(core.Name(), "Core");
  EXPECT_STREQ(future.Name(), "Future");
  EXPECT_STREQ(com.Name(), "Com");
  EXPECT_EQ(core.Id(), 0x8000000000000014U);
  EXPECT_EQ(future.Id(), 0x8000000000000013U);
  EXPECT_EQ(com.Id(), 0x8000000000001267U);

  const Text texts[] = {
      {core, 22, "Invalid argument"},
      {core, 137, "Invalid meta model shortname"},
      {core, 138, "Invalid meta model path"},
      {core, 139, "Unknown error"},
      {core, 0, "Unknown error"},
      {core, -22, "Unknown error"},
      {future, 101, "broken promise"},
      {future, 102, "future already retrieved"},
      {future, 103, "promise already satisfied"},
      {future, 104, "no state associated with this future"},
      {future, 100, "unknown future error"},
      {future, 105, "unknown future error"},
      {com, 1, "Service is not available."},
      {com, 2, "Application holds more SamplePtrs than commited in Subscribe()."},
      {com, 3, "Local failure has been detected by the network binding."},
      {com, 0, "Unknown error"},
      {com, 4, "Unknown error"},
  };
  for (const Text& text : texts) {
    EXPECT_STREQ(text.domain.Message(text.code), text.message) << text.domain.Name() << ' ' << text.code;
    EXPECT_STREQ(ErrorCode(text.code, text.domain).Message(), text.message);
  }
}

TEST(ErrorDomains, AreToldApartByIdNotByAddress) {
  const ara::core::CoreErrorDomain one;
  const ara::core::CoreErrorDomain other;
  EXPECT_TRUE(static_cast<const ErrorDomain&>(one) == other);
  EXPECT_EQ(ErrorCode(22, one), ErrorCode(22, 7, other)) << "support data takes no part";
  EXPECT_NE(ErrorCode(22, one), ErrorCode(137, other));
  EXPECT_NE(ErrorCode(3, one), ErrorCode(3, ara::com::GetComErrorDomain()));
}

template <typename Exception>
void ExpectThrown(const ErrorCode& code) {
  try {
    code.ThrowAsException();
  } catch (const std::exception& caught) {
    const auto* const exception = dynamic_cast<const Exception*>(&caught);
    ASSERT_NE(exception, nullptr);
    EXPECT_NE(dynamic_cast<const ara::core::Exception*>(&caught), nullptr);
    EXPECT_EQ(exception->Error().Value(), code.Value());
    EXPECT_EQ(exception->Error().SupportData(), code.SupportData());
    EXPECT_EQ(&exception->Error().Domain(), &code.Domain());
    EXPECT_STREQ(caught.what(), std::exception().what()) << "the readable text is the domain's";
  }
}

TEST(ErrorDomains, ThrowTheirOwnExceptionWithACopyOfTheCode) {
  ExpectThrown<ara::core::CoreException>(MakeErrorCode(ara::core::CoreErrc::kInvalidArgument, 1));
  ExpectThrown<ara::core::FutureException>(MakeErrorCode(ara::core::future_errc::broken_promise, 2));
  ExpectThrown<ara::com::ComErrorDomainException>(MakeErrorCode(ara::com::ComErrc::kNetworkBindingFailure, -3));
}

TEST(IllegalStateException, IsARuntimeErrorWithItsText) {
  try {
    throw ara::com::IllegalStateException("No Get handler registered!");
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "No Get handler registered!");
    EXPECT_NE(dynamic_cast<const ara::com::Exception*>(&error), nullptr);
  }
}

}  // namespace
