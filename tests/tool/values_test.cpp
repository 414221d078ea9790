#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "serialization/serializer.h"
#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/from_json.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/nearest.h"
#include "tools/tarn7/values/outline.h"
#include "tools/tarn7/values/payload_check.h"
#include "tools/tarn7/values/to_json.h"

namespace tarn7::tool {
namespace {

namespace common = ara::com::internal::vsomeip::common;

using Records = std::vector<sample::Everything>;

constexpr const char* kEverything =
    R"({"member9":18446744073709551615,"member0":true,"member1":-32768,"member2":0.1,"member3":1e-300,)"
    R"("member4":2,"member5":"ä\n","member6":"00ff7a","member7":[0,65535],"member8":{},"member4095":[{"member0":1}]})";

TEST(Values, EveryKindOfMemberKeepsItsValueAndItsPlace) {
  const auto record = FromJson<sample::Everything>(Json::parse(kEverything));
  EXPECT_EQ(record.member9, std::uint64_t{18446744073709551615U});
  EXPECT_EQ(record.member1, std::int16_t{-32768});
  EXPECT_EQ(record.member2, 0.1F);
  EXPECT_EQ(record.member4, sample::Colour::kBlue);
  EXPECT_EQ(record.member6, (std::array<std::uint8_t, 3>{0x00, 0xFF, 0x7A}));
  EXPECT_EQ(ToText(ToJson(record)), kEverything);
  EXPECT_EQ(ToText(ToJson(std::vector<sample::Everything>(2))), "[{},{}]");
  EXPECT_EQ(ToText(ToJson(std::vector<std::uint8_t>{0x0A, 0xF0})), R"("0af0")");
  const Json everything = Json::parse(kEverything);
  EXPECT_EQ(Outline({everything, everything}), "2 records, member7: 4, member4095: 2, 6 elements");
  EXPECT_EQ(Outline(Json::array({Json::object()})), "1 record");
}

int SignificantDigits(const std::string& number) {
  std::string digits;
  const std::string mantissa = number.substr(0, number.find('e'));
  std::copy_if(mantissa.begin(), mantissa.end(), std::back_inserter(digits),
               [](char c) { return c >= '0' && c <= '9'; });
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos ? 0 : static_cast<int>(digits.find_last_not_of('0') - first) + 1;
}

TEST(Values, FloatsHaveTheDigitsThatIdentifyThem) {
  const std::pair<float, const char*> texts[] = {{0.1F, "0.1"},
                                                 {1.0F, "1.0"},
                                                 {-0.0F, "-0.0"},
                                                 {3.4028235e38F, "3.4028235e+38"},
                                                 {1e-45F, "1e-45"},
                                                 {NAN, R"("NaN")"},
                                                 {INFINITY, R"("Infinity")"},
                                                 {-INFINITY, R"("-Infinity")"}};
  for (const auto& [value, text] : texts) {
    EXPECT_EQ(ToText(ToJson(value)), text);
    const auto back = FromJson<float>(Json::parse(text));
    EXPECT_TRUE(std::isnan(value) ? std::isnan(back) : std::memcmp(&back, &value, sizeof(back)) == 0) << text;
  }
  std::mt19937 random;
  for (int i = 0; i < 20000; ++i) {
    const auto bits = static_cast<std::uint32_t>(random());
    float value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    if (std::isfinite(value)) {
      const std::string text = ToText(ToJson(value));
      ASSERT_EQ(FromJson<float>(Json::parse(text)), value) << text;
      ASSERT_LE(SignificantDigits(text), std::numeric_limits<float>::max_digits10) << text;
    }
  }
}

TEST(Values, BytesOfTheNetworkAreShownWhateverTheyAre) {
  bool flag = false;
  std::memset(&flag, 2, sizeof(flag));
  EXPECT_EQ(ToText(ToJson(flag)), "true");
  EXPECT_EQ(ToText(ToJson(std::string("a\xFF"
                                      "b"))),
            "\"a\xEF\xBF\xBD"
            "b\"");
}

template <typename T>
std::string Refusal(const char* json) {
  try {
    FromJson<T>(Json::parse(json));
    return "accepted";
  } catch (const ValueError& error) {
    return error.what();
  }
}

TEST(Values, WhatDoesNotFitIsRefusedWithItsPlace) {
  const std::pair<const char*, const char*> refusals[] = {
      {"{}", "the value: expected an array, found {}"},
      {R"([{},{"member8":{"member0":4294967296}}])",
       "[1].member8.member0: 4294967296 does not fit a 32-bit unsigned integer (0 to 4294967295)"},
      {R"([{"member4095":[{},{"member0":-1}]}])",
       "[0].member4095[1].member0: -1 does not fit a 32-bit unsigned integer (0 to 4294967295)"},
      {R"([{"member1":32768}])", "[0].member1: 32768 does not fit a 16-bit signed integer (-32768 to 32767)"},
      {R"([{"member1":-32769}])", "[0].member1: -32769 does not fit a 16-bit signed integer (-32768 to 32767)"},
      {R"([{"member1":18446744073709551615}])",
       "[0].member1: 18446744073709551615 does not fit a 16-bit signed integer (-32768 to 32767)"},
      {R"([{"member4":1.5}])", "[0].member4: 1.5 does not fit a 8-bit unsigned integer (0 to 255)"},
      {R"([{"member7":[1,"2"]}])", "[0].member7[1]: expected a 16-bit unsigned integer, found \"2\""},
      {R"([{"member2":1e39}])", "[0].member2: 1e+39 does not fit a 32-bit float"},
      {R"([{"member2":"nan"}])",
       "[0].member2: expected a number, \"NaN\", \"Infinity\" or \"-Infinity\", found \"nan\""},
      {R"([{"member0":1}])", "[0].member0: expected true or false, found 1"},
      {R"([{"member0":null}])", "[0].member0: expected true or false, found null"},
      {R"([{"member5":7}])", "[0].member5: expected a string, found 7"},
      {R"([{"member6":"00ff"}])", "[0].member6: expected exactly 3 bytes, found 2"},
      {R"([{"member6":"00f"}])", "[0].member6: bytes need two hex digits each, found 3 digits"},
      {R"([{"member6":"00fg00"}])", "[0].member6: no hex digits at position 2 of the string"},
      {R"([{"member8":[]}])", "[0].member8: expected an object, found []"},
      {R"([{"member40":1}])", "[0].member40: no such member; did you mean member0?"},
      {R"([{"":1}])", "[0].: no such member; did you mean member9?"}};
  for (const auto& [json, refusal] : refusals) {
    EXPECT_EQ(Refusal<Records>(json), refusal);
  }
  const std::string deep = "[[" + std::string(500000, '[') + std::string(500000, ']') + "]]";
  EXPECT_EQ(Refusal<Records>(deep.c_str()), "[0]: expected an object, found array");
  EXPECT_EQ(Refusal<sample::Strict>(R"({"member1":1})"), "member0: this member is required");
}

TEST(Values, SimulatedValuesFitEveryField) {
  ValueSource source;
  for (const Interface& interface : Interfaces()) {
    for (const auto& field : interface.fields) {
      Json value = source.First(field->Type());
      const Json first = value;
      for (int i = 0; i < 200; ++i) {
        const auto bytes = field->Encode(value);
        ASSERT_EQ(field->Decode(bytes.data(), bytes.size()), value) << field->Name();
        source.Move(value, field->Type());
      }
      EXPECT_NE(value, first) << field->Name();
    }
  }
}

TEST(Values, FieldsEncodeToTheirBytes) {
  const Field& field = *FindAddress("energysystem/highVoltageBatteries").field;
  const auto bytes = support::Bytes("00000010 0000000C 2000 0000002A 2001 3DCCCCCD");
  const Json value = Json::parse(R"([{"member0":42,"member1":0.1}])");
  EXPECT_EQ(field.Encode(value), bytes);
  EXPECT_EQ(field.Decode(bytes.data(), bytes.size()), value);
  EXPECT_THROW(field.Decode(bytes.data(), bytes.size() - 1), std::runtime_error);
}

/// What the check says of a payload; of one that it lets pass, whether the decoder takes it.
std::string Verdict(const std::vector<unsigned char>& bytes) {
  try {
    const PayloadNotes notes = CheckPayload<Records>(bytes.data(), bytes.size());
    common::DeserializeFieldValue<Records>(bytes.data(), bytes.size());
    return notes.empty() ? "accepted" : notes.back();
  } catch (const PayloadError& error) {
    return error.what();
  } catch (const std::exception& error) {
    return std::string("let pass: ") + error.what();
  }
}

TEST(Payloads, WhatCannotBeReadIsNamedWithItsPlace) {
  const std::pair<const char*, const char*> verdicts[] = {
      {"", "the value at byte 0: Deserialization of ara::core::Vector<T> failed, insufficient data."},
      {"00000008 00000000 00000001",
       "[1] at byte 8: Deserialization of structure failed, declared size excess data length."},
      {"00000007 00000000 000000", "[1] at byte 8: Deserialization of structure failed, unable to read size."},
      {"00000009 00000005 1001 0007 00",
       "[0] at byte 12: Deserialization of trivially copyable type failed, insufficient data!"},
      {"00000009 00000005 2002 000000",
       "[0].member2 at byte 8: Deserialization of structure failed, declared size excess data length."},
      {"00000007 00000003 0001 07", "[0].member1 at byte 10: Insufficient arguments from remote end"},
      {"00000014 00000010 4008 0000000A 3000 0000000000000001",
       "[0].member8.member0 at byte 20: 4 bytes are passed over"},
      {"00000017 00000013 4FFF 0000000D 00000000 00000005 0000 00 4000",
       "[0].member4095[1].member0 at byte 24: Insufficient arguments from remote end"},
      {"0000000D 00000009 4007 00000003 000102",
       "[0].member7 at byte 10: Deserialization of sequence container failed, insufficient data."},
      {"00000007 00000003 0063 07", "[0] at byte 8: no member has data id 99"},
      {"00000000 FFFF", "the value at byte 4: 2 bytes are passed over"}};
  for (const auto& [bytes, verdict] : verdicts) {
    EXPECT_THAT(Verdict(support::Bytes(bytes)), testing::HasSubstr(verdict)) << bytes;
  }
  const auto strict = support::Bytes("00000007 00000003 0001 07");
  EXPECT_THROW(CheckPayload<std::vector<sample::Strict>>(strict.data(), strict.size()), PayloadError);
}

TEST(Payloads, TheCheckRefusesWhatTheDecoderRefuses) {
  std::vector<unsigned char> whole;
  common::SequenceContainerSerializer<Records>(
      FromJson<Records>(Json::parse("[" + std::string(kEverything) + "," + kEverything + "]")))
      .pushbackTo(whole);
  std::mt19937 random;
  int accepted = 0;
  for (int i = 0; i < 20000; ++i) {
    std::vector<unsigned char> bytes = whole;
    for (std::size_t changes = 1 + random() % 2; changes > 0; --changes) {
      bytes[random() % bytes.size()] ^= static_cast<unsigned char>(1U << (random() % 8));
    }
    bytes.resize(bytes.size() - (random() % 4 == 0 ? random() % bytes.size() : 0));
    const std::string verdict = Verdict(bytes);
    ASSERT_THAT(verdict, testing::Not(testing::HasSubstr("let pass"))) << ToHex(bytes.data(), bytes.size());
    accepted += verdict == "accepted" ? 1 : 0;
    if (verdict.find(": Deserialization of ") != std::string::npos) {
      try {
        common::DeserializeFieldValue<Records>(bytes.data(), bytes.size());
        FAIL() << verdict;
      } catch (const std::runtime_error& error) {
        ASSERT_THAT(verdict, testing::EndsWith(error.what()));
      }
    }
  }
  EXPECT_GT(accepted, 100);
}

TEST(Names, TheNearestIsOffered) {
  const std::vector<std::string> names = {"energysystem", "chargetimemanager", "status"};
  EXPECT_EQ(Nearest("EnergySystem", names), "energysystem");
  EXPECT_EQ(Nearest("chargetimemgr", names), "chargetimemanager");
  EXPECT_EQ(Nearest("", names), "status");
}

}  // namespace
}  // namespace tarn7::tool
