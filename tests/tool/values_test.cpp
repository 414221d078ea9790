#include <algorithm>
#include <array>
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
#include <nlohmann/json.hpp>

#include "serialization/deserializer.h"
#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"
#include "tests/tool/sample_model.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/model/model_reader.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/nearest.h"
#include "tools/tarn7/values/payload_check.h"
#include "tools/tarn7/values/payload_text.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {
namespace {

constexpr const char* kEverything =
    R"([{"member9":18446744073709551615,"member0":true,"member1":-32768,"member2":0.1,"member3":1e-300,)"
    R"("member4":2,"member5":"ä\n","member6":"00ff7a","member7":[0,65535],"member8":{},"member4095":[{"member0":1}]}])";

const ValueType& Everything() {
  static const Interface sample = ReadModel(sample::kModel);
  return *sample.fields.front().type;
}

Payload Encoded(const std::string& json) { return Encode(Everything(), Json::parse(json)); }

TEST(Values, EveryKindOfMemberKeepsItsValueAndItsPlace) {
  const Payload payload = Encoded(kEverything);
  const auto record =
      common::DeserializeFieldValue<std::vector<sample::Everything>>(payload.data(), payload.size()).front();
  EXPECT_EQ(record.member9, std::uint64_t{18446744073709551615U});
  EXPECT_EQ(record.member1, std::int16_t{-32768});
  EXPECT_EQ(record.member2, 0.1F);
  EXPECT_EQ(record.member4, sample::Colour::kBlue);
  EXPECT_EQ(record.member6, (std::array<std::uint8_t, 3>{0x00, 0xFF, 0x7A}));
  EXPECT_EQ(PayloadText(Everything(), payload), kEverything);
  EXPECT_EQ(PayloadText(Everything(), Encoded("[{},{}]")), "[{},{}]");
  Json twice = Json::parse(kEverything);
  twice.push_back(twice.front());
  EXPECT_EQ(Outline(Everything(), Encode(Everything(), twice)), "2 records, member7: 4, member4095: 2, 6 elements");
  EXPECT_EQ(Outline(Everything(), Encoded("[{}]")), "1 record");
}

int SignificantDigits(const std::string& number) {
  std::string digits;
  const std::string mantissa = number.substr(0, number.find('e'));
  std::copy_if(mantissa.begin(), mantissa.end(), std::back_inserter(digits),
               [](char c) { return c >= '0' && c <= '9'; });
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos ? 0 : static_cast<int>(digits.find_last_not_of('0') - first) + 1;
}

/// The payload of one record with that member2.
Payload OfFloat(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  Payload payload = support::Bytes("0000000A 00000006 2002");
  AppendNumber(payload, bits, sizeof(bits));
  return payload;
}

std::string FloatText(float value) {
  const std::string text = PayloadText(Everything(), OfFloat(value));
  const std::size_t begin = text.find(':') + 1;
  return text.substr(begin, text.size() - begin - 2);
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
    EXPECT_EQ(FloatText(value), text);
    EXPECT_EQ(Encoded(R"([{"member2":)" + std::string(text) + "}]"), OfFloat(value));
  }
  std::mt19937 random;
  for (int i = 0; i < 20000; ++i) {
    const auto bits = static_cast<std::uint32_t>(random());
    float value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    if (std::isfinite(value)) {
      const std::string text = FloatText(value);
      ASSERT_EQ(Encoded(R"([{"member2":)" + text + "}]"), OfFloat(value)) << text;
      ASSERT_LE(SignificantDigits(text), std::numeric_limits<float>::max_digits10) << text;
    }
  }
}

TEST(Values, BytesOfTheNetworkAreShownWhateverTheyAre) {
  const auto text = [](const char* bytes) { return PayloadText(Everything(), support::Bytes(bytes)); };
  EXPECT_EQ(text("00000007 00000003 0000 02"), R"([{"member0":true}])");
  EXPECT_EQ(text("0000000D 00000009 4005 00000003 61FF62"),
            "[{\"member5\":\"a\xEF\xBF\xBD"
            "b\"}]");
  EXPECT_EQ(text("00000007 00000003 0004 FF"), R"([{"member4":255}])");
  EXPECT_EQ(text("0000000B 00000007 1001 FFFE 00"
                 "04 00"),
            R"([{"member1":-2,"member4":0}])");
  // What a terminal would obey; what only looks like it is left alone.
  EXPECT_EQ(text("00000016 00000012 4005 0000000C 1B 7F C29B C280 C29F C2A0 C39B"),
            "[{\"member5\":\"\\u001b\\u007f\\u009b\\u0080\\u009f\u00A0\u00DB\"}]");
  // The later one of two, in the record's order.
  EXPECT_EQ(text("0000000D 00000009 0004 01 0000 01 0004 02"), R"([{"member0":true,"member4":2}])");
}

std::string Refusal(const std::string& json) {
  try {
    Encoded(json);
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
      {R"([{"member4":1.5}])", "[0].member4: 1.5 does not fit an 8-bit unsigned integer (0 to 255)"},
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
      {"[{\"member2\":\"\u009B31m\x7F\"}]",
       "[0].member2: expected a number, \"NaN\", \"Infinity\" or \"-Infinity\", found \"\\u009b31m\\u007f\""},
      {R"([{"":1}])", "[0].: no such member; did you mean member9?"}};
  for (const auto& [json, refusal] : refusals) {
    EXPECT_EQ(Refusal(json), refusal);
  }
  const std::string deep = "[[" + std::string(500000, '[') + std::string(500000, ']') + "]]";
  EXPECT_EQ(Refusal(deep), "[0]: expected an object, found array");
}

TEST(Values, SimulatedValuesFitEveryField) {
  const InterfaceTable interfaces;
  ValueSource source;
  for (const Interface& interface : interfaces.All()) {
    for (const Field& field : interface.fields) {
      Payload value = source.First(*field.type);
      const Payload first = value;
      for (int i = 0; i < 50; ++i) {
        ASSERT_THAT(CheckPayload(*field.type, value), testing::IsEmpty()) << field.name;
        ASSERT_EQ(Encode(*field.type, Json::parse(PayloadText(*field.type, value))), value) << field.name;
        source.Move(*field.type, value);
      }
      EXPECT_NE(value, first) << field.name;
    }
  }
}

TEST(Values, FieldsEncodeToTheirBytes) {
  const InterfaceTable interfaces;
  const ValueType& type = *interfaces.FindAddress("energysystem/highVoltageBatteries").field->type;
  auto bytes = support::Bytes("00000010 0000000C 2000 0000002A 2001 3DCCCCCD");
  const char* const text = R"([{"member0":42,"member1":0.1}])";
  EXPECT_EQ(Encode(type, Json::parse(text)), bytes);
  EXPECT_EQ(PayloadText(type, bytes), text);
  bytes.pop_back();
  EXPECT_THROW(PayloadText(type, bytes), PayloadError);
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
       "[0].member2 at byte 8: Deserialization of trivially copyable type failed, insufficient data!"},
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
    try {
      EXPECT_THAT(CheckPayload(Everything(), support::Bytes(bytes)), testing::Contains(testing::HasSubstr(verdict)));
    } catch (const PayloadError& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(verdict)) << bytes;
    }
  }
}

TEST(Text, WhatATerminalOrAShellWouldObeyIsEscaped) {
  const std::pair<const char*, const char*> texts[] = {
      {"a\n\x1b\x7f", R"(a\u000a\u001b\u007f)"},
      {"\u00a0\u00e4\u4e2d\U0001f600\u200d\u2027\u202f\u2065\u206a",
       "\u00a0\u00e4\u4e2d\U0001f600\u200d\u2027\u202f\u2065\u206a"},
      {"\xc2\x80\xc2\x9b\xc2\x9f", R"(\u0080\u009b\u009f)"},
      {"\u061c\u200e\u200f\u2028\u2029\u202a\u202e\u2066\u2069",
       R"(\u061c\u200e\u200f\u2028\u2029\u202a\u202e\u2066\u2069)"},
      {"\x9b \xff \xc3", R"(\x9b \xff \xc3)"},                            // no UTF-8: a part, nothing at all, cut off
      {"\xc0\x9b \xe0\x80\x9b \xed\xa0\x80 \xf4\x90\x80\x80 \xe2\x80 x",  // too long, a surrogate, too large
       R"(\xc0\x9b \xe0\x80\x9b \xed\xa0\x80 \xf4\x90\x80\x80 \xe2\x80 x)"}};
  for (const auto& [text, printable] : texts) {
    EXPECT_EQ(Printable(text), printable);
  }
  EXPECT_EQ(Printable("a\nb\r", "\n"), "a\nb\\u000d");
  EXPECT_EQ(ToText(Json{{"\x1b\u202e", "\xff\xc2\x85"}}), "{\"\\u001b\\u202e\":\"\ufffd\\u0085\"}");

  EXPECT_EQ(ShellWord("/tmp/vsomeip-0"), "/tmp/vsomeip-0");
  EXPECT_EQ(ShellWord("/tmp/a;b $(c) '"), R"('/tmp/a;b $(c) '\''')");
  EXPECT_EQ(ShellWord("a'\\\n\xff"), R"($'a\'\\\x0a\xff')");
  EXPECT_EQ(ShellWord(""), "''");
}

TEST(Names, TheNearestIsOffered) {
  const std::vector<std::string> names = {"energysystem", "chargetimemanager", "status"};
  EXPECT_EQ(Nearest("EnergySystem", names), "energysystem");
  EXPECT_EQ(Nearest("chargetimemgr", names), "chargetimemanager");
  EXPECT_EQ(Nearest("", names), "status");
}

}  // namespace
}  // namespace tarn7::tool
