#include "serialization/deserializer.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interfaces/energysystem/energysystem_datatypes.h"
#include "serialization/error_code_codec.h"
#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"

namespace {

using namespace ara::com::internal::vsomeip::common;
using namespace kro::services::energysystem::datatypes;
using sample::Everything;
using support::Bytes;

constexpr const char* kScalarShort = "Deserialization of trivially copyable type failed, insufficient data!";
constexpr const char* kNoSize = "Deserialization of structure failed, unable to read size.";
constexpr const char* kRecordLong = "Deserialization of structure failed, declared size excess data length.";
constexpr const char* kSequenceShort = "Deserialization of sequence container failed, insufficient data.";
constexpr const char* kValueShort = "Deserialization of ara::core::Vector<T> failed, insufficient data.";

template <typename T>
std::vector<T> Decode(const std::string& hex) {
  // An exact heap copy, so that AddressSanitizer sees every byte that is read beyond it.
  const auto bytes = Bytes(hex);
  return DeserializeFieldValue<std::vector<T>>(bytes.data(), bytes.size());
}

template <typename Call>
std::string ErrorOf(Call call) {
  try {
    call();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

template <typename T>
std::string DecodeError(const std::string& hex) {
  return ErrorOf([&] { Decode<T>(hex); });
}

constexpr const char* kFull =
    "00000065 00000061"
    "3009 0102030405060708 0000 01 1001 fffe 2002 3fc00000 3003 c000000000000000 0004 02"
    "4005 00000004 61620063 4006 00000003 070809 4007 00000004 12340005 4008 00000006 2000 deadbeef"
    "4fff 0000000e 00000006 2000 00000001 00000000";

TEST(Deserializer, ReadsEveryKindOfMember) {
  const auto value = Decode<Everything>(kFull);
  ASSERT_EQ(value.size(), 1U);
  const Everything& record = value[0];
  EXPECT_EQ(record.member9, 0x0102030405060708U);
  EXPECT_EQ(record.member0, true);
  EXPECT_EQ(record.member1, std::int16_t{-2});
  EXPECT_EQ(record.member2, 1.5F);
  EXPECT_EQ(record.member3, -2.0);
  EXPECT_EQ(record.member4, sample::Colour::kBlue);
  EXPECT_EQ(record.member5, std::string("ab\0c", 4));
  EXPECT_EQ(record.member6, (std::array<std::uint8_t, 3>{7, 8, 9}));
  EXPECT_EQ(record.member7, (std::vector<std::uint16_t>{0x1234, 5}));
  EXPECT_EQ(record.member8->member0, 0xDEADBEEFU);
  ASSERT_EQ(record.member4095->size(), 2U);
  EXPECT_EQ((*record.member4095)[0].member0, 1U);
  EXPECT_FALSE((*record.member4095)[1].member0.has_value());
}

TEST(Deserializer, ReadsTheRecordsOfEnergysystem) {
  const auto high =
      Decode<DT_highVoltageBatteries_struct>("00000019 00000015 2000 00000001 2001 7fc00000 2002 ffffffff 0003 01");
  EXPECT_EQ(high.at(0).member0, 1U);
  EXPECT_TRUE(std::isnan(high[0].member1.value()));
  EXPECT_EQ(high[0].member2, 0xFFFFFFFFU);
  EXPECT_EQ(high[0].member3, true);

  const auto low = Decode<DT_lowVoltageBatteries_struct>("00000016 00000012 2000 00000001 2001 00000002 2002 00000003");
  EXPECT_EQ(low.at(0).member2, 3U);
  const auto system =
      Decode<DT_lowVoltageSystemInfo_struct>("00000019 00000015 2000 00000001 2001 00000002 0002 00 2003 00000004");
  EXPECT_EQ(system.at(0).member2, false);
  EXPECT_EQ(system[0].member3, 4U);
  const auto notifications = Decode<DT_notifications_struct>("0000000a 00000006 2000 0000002a");
  EXPECT_EQ(notifications.at(0).member0, 42U);
  EXPECT_FALSE(notifications[0].member1.has_value());
}

TEST(Deserializer, SkipsWhatItDoesNotKnowAndTakesTheLaterOfTwo) {
  // Unknown ids with each of the eight wire types, between the members.
  const auto value = Decode<DT_notifications_struct>(
      "00000046 00000042"
      "0009 ff 1009 ffff 2000 00000001 2009 ffffffff 3009 ffffffffffffffff"
      "4fff 00000000 5009 02 ffff 6009 0001 ff 7009 00000003 ffffff 2001 00000007 2000 00000002");
  ASSERT_EQ(value.size(), 1U);
  EXPECT_EQ(value[0].member0, 2U);
  EXPECT_EQ(value[0].member1, 7U);
}

TEST(Deserializer, TakesTheSizeFromTheWireTypeAndReadsTheFirstBytes) {
  // A wider wire type than the member's: the first bytes of what follows the tag count, a length field included.
  EXPECT_EQ(Decode<DT_notifications_struct>("0000000e 0000000a 3000 0000002a ffffffff").at(0).member0, 42U);
  EXPECT_EQ(Decode<DT_notifications_struct>("0000000c 00000008 4000 00000002 ffff").at(0).member0, 2U);
  EXPECT_EQ(Decode<DT_notifications_struct>("0000000b 00000007 5000 04 00002a00").at(0).member0, 0x04000'02AU);
  EXPECT_EQ(Decode<DT_highVoltageBatteries_struct>("0000000a 00000006 2003 01ffffff").at(0).member3, true);
  // Bit 15 of the tag is reserved and means nothing.
  EXPECT_EQ(Decode<DT_notifications_struct>("0000000a 00000006 a000 0000002a").at(0).member0, 42U);
}

TEST(Deserializer, KeepsTheByteOfABool) {
  const auto value = Decode<DT_lowVoltageSystemInfo_struct>("00000007 00000003 0002 05");
  const auto copy = value;
  unsigned char stored = 0;
  std::memcpy(&stored, &*copy.at(0).member2, 1);
  EXPECT_EQ(stored, 5);
}

struct Malformed {
  const char* hex;
  const char* error;
};

TEST(Deserializer, ReportsEachMalformedValue) {
  const Malformed cases[] = {
      {"", kValueShort},
      {"000000", kValueShort},
      {"00000005 00000000", kValueShort},
      {"ffffffff 00000000", kValueShort},
      {"00000003 000000", kNoSize},
      {"00000003 00000000", kSequenceShort},            // the element's length field reaches beyond the sequence
      {"00000005 00000000 00 000000", kSequenceShort},  // the second element does
      {"00000004 00000001 ff", kScalarShort},           // is decoded before its extent is compared
      {"00000004 00000003 0000 01", kSequenceShort},
      {"00000004 00000001", kRecordLong},
      {"00000004 ffffffff", kRecordLong},
      {"00000004 fffffffc", kRecordLong},
      {"00000005 00000001 20", kScalarShort},               // inside a tag
      {"00000009 00000005 4009 000000", kScalarShort},      // inside a 4-byte length field
      {"00000006 00000002 5009", kScalarShort},             // a 1-byte length field is missing
      {"00000007 00000003 6009 00", kScalarShort},          // inside a 2-byte length field
      {"00000008 00000004 7009 0000", kScalarShort},        // inside the other 4-byte length field
      {"00000009 00000005 2000 000000", kScalarShort},      // a known member beyond the record
      {"00000009 00000005 2000 000000 ff", kScalarShort},   // ... though the payload has more
      {"00000009 00000005 2009 000000", kScalarShort},      // an unknown one
      {"0000000a 00000006 4009 ffffffff", kRecordLong},     // a length that would wrap around
      {"00000006 00000002 0000", kScalarShort},             // no value at all
      {"0000000b 00000007 4008 00000002 00", kRecordLong},  // a nested record beyond its record
      {"00000010 0000000c 4008 00000006 2000 00000001", "no error"},
      {"0000000f 0000000b 4008 00000005 2000 000000", kScalarShort},  // a nested member beyond the nested record
      {"00000007 00000003 0008 00", kNoSize},                         // a nested record of one byte
      {"00000007 00000003 0007 00", kScalarShort},                    // a nested sequence of one byte
      {"0000000a 00000006 2007 00000001", kSequenceShort},            // a nested sequence longer than its member
      {"0000000d 00000009 4007 00000003 123400", kSequenceShort},     // no multiple of the element's size
      {"0000000e 0000000a 4fff 00000004 00000001", kRecordLong},      // a nested element beyond all bytes
      {"0000000c 00000008 4006 00000002 0708", kSequenceShort},       // a byte array of another size
      {"0000000a 00000006 2005 00000001", kSequenceShort},            // a string longer than its member
  };
  for (const Malformed& malformed : cases) {
    EXPECT_EQ(DecodeError<Everything>(malformed.hex), malformed.error) << malformed.hex;
  }
  EXPECT_EQ(DecodeError<sample::Strict>("00000007 00000003 0001 05"), "Failed to deserialize required fields");
  EXPECT_EQ(DecodeError<sample::Strict>("00000007 00000003 0000 05"), "no error");
  EXPECT_EQ(ErrorOf([] { Deserializer<DT_notifications_struct>(Bytes("000000").data(), 3).getValue(); }), kNoSize);
}

// A member that stops early is an error at every point, never a crash or a value.
TEST(Deserializer, RefusesEveryTruncation) {
  const auto full = Bytes(kFull);
  for (std::size_t size = 0; size < full.size(); ++size) {
    const std::vector<unsigned char> prefix(full.data(), full.data() + size);
    EXPECT_EQ(ErrorOf([&] { DeserializeFieldValue<std::vector<Everything>>(prefix.data(), prefix.size()); }),
              kValueShort);
    if (size < 8) {
      continue;
    }
    // The same, with both outer lengths telling the truth about what is left: cuts inside a member are found there.
    auto honest = prefix;
    StoreBigEndian(static_cast<std::uint32_t>(size - 4), honest.data());
    StoreBigEndian(static_cast<std::uint32_t>(size - 8), honest.data() + 4);
    const std::string error =
        ErrorOf([&] { DeserializeFieldValue<std::vector<Everything>>(honest.data(), honest.size()); });
    EXPECT_TRUE(error == kRecordLong || error == kScalarShort || error == "no error") << size << ": " << error;
  }
}

TEST(DeserializingEnumerator, ReadsOneMemberAfterAnother) {
  const auto bytes = Bytes("0000002a 01 3f800000");
  DeserializingEnumerator read(bytes.data(), bytes.size());
  ara::core::Optional<unsigned int> number;
  ara::core::Optional<bool> flag;
  ara::core::Optional<float> ratio;
  read(number);
  read(flag);
  read(ratio);
  EXPECT_EQ(number, 42U);
  EXPECT_EQ(flag, true);
  EXPECT_EQ(ratio, 1.0F);
  EXPECT_EQ(ErrorOf([&] { read(flag); }), "Insufficient arguments from remote end");
  EXPECT_EQ(flag, true) << "a member that could not be read stays";
}

TEST(ErrorCodeDeserializer, ChecksSizeAndFixedParts) {
  const std::string good = "00000013 01 0010 8000000000001267 00000003 ffffffff";
  const auto decode = [](const std::string& hex) {
    const auto bytes = Bytes(hex);
    return Deserializer<ara::core::ErrorCode>(bytes.data(), bytes.size());
  };
  const auto code = decode(good);
  EXPECT_EQ(code.domainId(), 0x8000000000001267U);
  EXPECT_EQ(code.value(), 3);
  EXPECT_EQ(code.supportData(), -1);

  constexpr const char* kLength = "Deserialization of ara::core::ErrorCode failed, unexpected data length.";
  constexpr const char* kInconsistent = "Deserialization of ara::core::ErrorCode failed, inconsistent data.";
  const Malformed cases[] = {
      {"", kLength},
      {"00000013 01 0010 8000000000001267 00000003 ffffff", kLength},
      {"00000013 01 0010 8000000000001267 00000003 ffffffff 00", kLength},
      {"00000014 01 0010 8000000000001267 00000003 ffffffff", kInconsistent},
      {"00000013 02 0010 8000000000001267 00000003 ffffffff", kInconsistent},
      {"00000013 01 0011 8000000000001267 00000003 ffffffff", kInconsistent},
  };
  for (const Malformed& malformed : cases) {
    EXPECT_EQ(ErrorOf([&] { decode(malformed.hex); }), malformed.error) << malformed.hex;
  }
}

}  // namespace
