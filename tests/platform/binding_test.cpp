// The parts of the SOME/IP binding that need no network.
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core_types/com_error_domain.h"
#include "core_types/core_error_domain.h"
#include "core_types/future_error_domain.h"
#include "platform/include/error_domain_registry.h"
#include "platform/include/message_check.h"
#include "platform/include/transport_identifier.h"
#include "platform/vsomeipbinding/version_policy.h"
#include "tests/platform/fake_mapping.h"

namespace ara::com::internal::vsomeip {
namespace {

TEST(TransportIdentifier, IsADecimalOrHexadecimalSixteenBitNumber) {
  const struct {
    const char* text;
    std::optional<std::uint16_t> id;
  } cases[] = {{"1", 1},          {"0x0001", 1},  {"0xfFfE", 0xFFFE},
               {"65534", 0xFFFE}, {"007", 7},     {"0", 0},
               {"65535", {}},     {"0xFFFF", {}}, {"65536", {}},
               {"0x10000", {}},   {"", {}},       {"0x", {}},
               {"ANY", {}},       {"-1", {}},     {"+1", {}},
               {" 1", {}},        {"1 ", {}},     {"1.0", {}},
               {"0x-1", {}},      {"0x0x1", {}},  {"18446744073709551617", {}}};
  for (const auto& test : cases) {
    const auto id = common::ToTransportIdentifier(InstanceIdentifier(test.text));
    EXPECT_EQ(id ? std::optional<std::uint16_t>(*id) : std::nullopt, test.id) << "'" << test.text << "'";
  }
  EXPECT_EQ(common::FromTransportIdentifier(0xFFFE), InstanceIdentifier("65534"));
}

TEST(MessageCheck, EveryPartOfTheHeaderMustFit) {
  using Type = ::vsomeip::message_type_e;
  using Code = ::vsomeip::return_code_e;
  const struct {
    std::uint16_t service, method;
    std::uint8_t version;
    Type type;
    Code code;
    bool is_request, fits;
  } cases[] = {{1, 2, 3, Type::MT_RESPONSE, Code::E_OK, false, true},
               {1, 2, 3, Type::MT_ERROR, Code::E_NOT_OK, false, true},
               {9, 2, 3, Type::MT_RESPONSE, Code::E_OK, false, false},
               {1, 9, 3, Type::MT_RESPONSE, Code::E_OK, false, false},
               {1, 2, 9, Type::MT_RESPONSE, Code::E_OK, false, false},
               {1, 2, 3, Type::MT_NOTIFICATION, Code::E_OK, false, false},
               {1, 2, 3, Type::MT_UNKNOWN, Code::E_OK, true, false},
               {1, 2, 3, Type::MT_REQUEST, Code::E_OK, true, true},
               {1, 2, 3, Type::MT_REQUEST, Code::E_NOT_OK, true, false}};
  for (const auto& test : cases) {
    const auto message = ::vsomeip::runtime::get()->create_message();
    message->set_service(test.service);
    message->set_method(test.method);
    message->set_interface_version(test.version);
    message->set_message_type(test.type);
    message->set_return_code(test.code);
    const Type expected = test.is_request ? Type::MT_REQUEST : Type::MT_RESPONSE;
    const Type alternative = test.is_request ? Type::MT_UNKNOWN : Type::MT_ERROR;
    EXPECT_EQ(common::checkMessageMetaData(*message, 1, 2, 3, expected, alternative, true, test.is_request), test.fits)
        << &test - cases;
  }
  EXPECT_TRUE(common::isMethodUndefined(0) && common::isMethodUndefined(0xFFFF) && !common::isMethodUndefined(0x4010));
  EXPECT_TRUE(common::isEventUndefined(0) && common::isEventUndefined(0xFFFF) && !common::isEventUndefined(0xC010));
  EXPECT_EXIT(common::abort(), testing::KilledBySignal(SIGABRT), "\\[fatal\\] \\[SIPB\\]");
}

TEST(ErrorDomains, KnownAndUnknown) {
  using common::error_domains::Registry;
  EXPECT_STREQ(Registry::getDomain(ara::core::CoreErrorDomain::kId).Name(), "Core");
  EXPECT_STREQ(Registry::getDomain(ara::core::FutureErrorDomain::kId).Name(), "Future");
  EXPECT_STREQ(Registry::getDomain(ComErrorDomain::kId).Name(), "Com");

  const auto& unknown = Registry::getDomain(0xABCDEF0123);
  EXPECT_EQ(unknown.Id(), 0xABCDEF0123);
  EXPECT_STREQ(unknown.Name(), "Unknown");
  EXPECT_STREQ(unknown.Message(1), "Unknown error domain 0x000000abcdef0123");
  EXPECT_EQ(&Registry::getDomain(0xABCDEF0123), &unknown);
  const ara::core::ErrorCode code(5, unknown);
  EXPECT_THROW(code.ThrowAsException(), ara::core::Exception);

  // A peer that makes ids up does not make the process grow.
  for (std::uint64_t id = 1; id <= 2000; ++id) {
    Registry::getDomain(id);
  }
  EXPECT_EQ(&Registry::getDomain(3000), &Registry::getDomain(4000));
  EXPECT_STREQ(Registry::getDomain(3000).Name(), "Unknown");
  EXPECT_EQ(&Registry::getDomain(0xABCDEF0123), &unknown);
}

TEST(VersionPolicy, DecidesWhichOfferedMinorVersionsFit) {
  constexpr std::uint32_t kAny = 0xFFFFFFFF;
  const struct {
    const char* what;
    std::uint32_t required;
    bool is_minimum;
    std::vector<runtime::ServiceVersion> blacklist;
    std::string fits;  // for each offered minor version from 0 on: y or n
  } cases[] = {
      {"any", kAny, false, {}, "yyyyy"},
      {"at least 2", 2, true, {}, "nnyyy"},
      {"exactly 2", 2, false, {}, "nnynn"},
      {"exactly 0", 0, false, {}, "ynnnn"},
      {"any but 3.1 and 3.3", kAny, false, {{3, 1}, {3, 3}, {2, 2}}, "ynyny"},
      {"exactly what is forbidden", 2, false, {{3, 2}}, "nnnnn"},
  };
  for (const auto& test : cases) {
    runtime::FakeMapping mapping;
    mapping.required_minor = test.required;
    mapping.is_minimum = test.is_minimum;
    mapping.blacklist = test.blacklist;
    std::string fits;
    for (std::uint32_t offered = 0; offered < test.fits.size(); ++offered) {
      const auto at_least = [&](std::uint32_t minor) { return minor == kAny || minor <= offered; };
      fits += runtime::FitsRequiredVersion(mapping, at_least) ? 'y' : 'n';
    }
    EXPECT_EQ(fits, test.fits) << test.what;
  }
}

}  // namespace
}  // namespace ara::com::internal::vsomeip
