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

#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/from_json.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/nearest.h"
#include "tools/tarn7/values/to_json.h"

namespace tarn7::tool {
namespace {

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
  using Records = std::vector<sample::Everything>;
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

TEST(Names, TheNearestIsOffered) {
  const std::vector<std::string> names = {"energysystem", "chargetimemanager", "status"};
  EXPECT_EQ(Nearest("EnergySystem", names), "energysystem");
  EXPECT_EQ(Nearest("chargetimemgr", names), "chargetimemanager");
  EXPECT_EQ(Nearest("", names), "status");
}

}  // namespace
}  // namespace tarn7::tool
