#include "serialization/serializer.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core_types/com_error_domain.h"
#include "interfaces/energysystem/energysystem_datatypes.h"
#include "serialization/error_code_codec.h"
#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"

namespace {

using namespace ara::com::internal::vsomeip::common;
using namespace kro::services::energysystem::datatypes;
using support::Bytes;

template <typename T>
ByteVector Encode(const std::vector<T>& value) {
  ByteVector out;
  SequenceContainerSerializer<std::vector<T>>(value).pushbackTo(out);
  EXPECT_EQ(out.size(), SerializedSize(value));
  return out;
}

sample::Everything FullRecord() {
  sample::Everything record;
  record.member9 = 0x0102030405060708U;
  record.member0 = true;
  record.member1 = std::int16_t{-2};
  record.member2 = 1.5F;
  record.member3 = -2.0;
  record.member4 = sample::Colour::kBlue;
  record.member5 = std::string("ab\0c", 4);
  record.member6 = std::array<std::uint8_t, 3>{7, 8, 9};
  record.member7 = std::vector<std::uint16_t>{0x1234, 5};
  record.member8 = sample::Inner{0xDEADBEEFU};
  record.member4095 = std::vector<sample::Inner>{{1U}, {}};
  return record;
}

TEST(Serializer, WritesEveryKindOfMemberInTheOrderOfTheList) {
  EXPECT_EQ(Encode<sample::Everything>({FullRecord()}), Bytes("00000065 00000061"
                                                              "3009 0102030405060708"
                                                              "0000 01"
                                                              "1001 fffe"
                                                              "2002 3fc00000"
                                                              "3003 c000000000000000"
                                                              "0004 02"
                                                              "4005 00000004 61620063"
                                                              "4006 00000003 070809"
                                                              "4007 00000004 1234 0005"
                                                              "4008 00000006 2000 deadbeef"
                                                              "4fff 0000000e 00000006 2000 00000001 00000000"));
}

TEST(Serializer, LeavesAbsentMembersOut) {
  EXPECT_EQ(Encode<sample::Everything>({}), Bytes("00000000"));
  EXPECT_EQ(Encode<sample::Everything>({{}}), Bytes("00000004 00000000"));
  DT_notifications_struct one;
  one.member0 = 1U;
  EXPECT_EQ(Encode<DT_notifications_struct>({one}), Bytes("0000000A 00000006 2000 00000001"));
  DT_highVoltageBatteries_struct last;
  last.member3 = true;
  EXPECT_EQ(Encode<DT_highVoltageBatteries_struct>({{}, last}), Bytes("0000000b 00000000 00000003 0003 01"));
  EXPECT_EQ(Encode<sample::Strict>({{5, {}}}), Bytes("00000007 00000003 0000 05")) << "a plain member is always there";
}

TEST(Serializer, AppendsBehindWhatIsThere) {
  ByteVector out = Bytes("aabb");
  const std::vector<DT_notifications_struct> value{{42U, {}}};
  SequenceContainerSerializer<std::vector<DT_notifications_struct>>(value).pushbackTo(out);
  EXPECT_EQ(out, Bytes("aabb 0000000a 00000006 2000 0000002a"));
  Serializer<std::uint32_t>::insertToHelper(out, 2, 0x01020304);
  EXPECT_EQ(out, Bytes("aabb 01020304 0000000a 00000006 2000 0000002a"));
}

/// Encodes step by step: content first, then its length inserted in front of it.
struct StepByStep {
  ByteVector& out;

  template <typename T>
  void Append(const T& value) const {
    const std::size_t start = out.size();
    if constexpr (kIsString<T> || kIsByteArray<T>) {
      out.insert(out.end(), value.begin(), value.end());
    } else if constexpr (kIsSequence<T>) {
      for (const auto& element : value) {
        Append(element);
      }
    } else if constexpr (kIsRecord<T>) {
      T::enumerate(value, *this);
    }
    if constexpr (kIsScalar<T>) {
      Serializer<T>(value).pushbackTo(out);
    } else {
      Serializer<std::uint32_t>::insertToHelper(out, start, static_cast<std::uint32_t>(out.size() - start));
    }
  }
  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const ara::core::Optional<T>& member) const {
    if (member) {
      Append(MakeTag(WireTypeOf<T>(), dataId));
      Append(*member);
    }
  }
};

// Large values are divided at every level, and memory is taken by what has been seen: values whose beginning says
// nothing about the rest.
TEST(Serializer, WritesLargeValuesLikeSmallOnes) {
  const sample::Everything small = FullRecord();
  sample::Everything text;
  text.member5 = std::string(300'000, 'x');
  sample::Everything numbers;
  numbers.member7 = std::vector<std::uint16_t>(100'000, std::uint16_t{0x1234});
  numbers.member0 = true;
  sample::Everything nested = small;
  nested.member4095 = std::vector<sample::Inner>(20'000, sample::Inner{7U});
  (*nested.member4095)[3].member0.reset();
  sample::Everything medium = small;
  medium.member5 = std::string(9'000, 'y');

  std::vector<std::vector<sample::Everything>> values{{nested}, {text, numbers, nested, medium, small}};
  values.emplace_back(3'000, small);
  values.emplace_back(20, medium);
  values.emplace_back(50'000, sample::Everything{}).insert(values.back().begin(), {text, nested});
  values.emplace_back(50'000, sample::Everything{}).push_back(nested);
  for (const auto& value : values) {
    ByteVector expected;
    StepByStep{expected}.Append(value);
    EXPECT_TRUE(Encode(value) == expected) << value.size() << " records";
    EXPECT_LT(Encode(value).capacity(), 32 * expected.size()) << value.size() << " records";
  }
  const std::vector<std::string> texts{std::string(70'000, 'a'), "", std::string(9'000, 'b')};
  ByteVector out;
  ByteVector expected;
  Serializer<std::vector<std::string>>(texts).pushbackTo(out);
  StepByStep{expected}.Append(texts);
  EXPECT_TRUE(out == expected);
}

TEST(Serializer, WritesAnErrorCodeAs23Bytes) {
  ByteVector out;
  Serializer<ara::core::ErrorCode>(ara::core::ErrorCode(3, -1, ara::com::GetComErrorDomain())).pushbackTo(out);
  EXPECT_EQ(out, Bytes("00000013 01 0010 8000000000001267 00000003 ffffffff"));
}

}  // namespace
