#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interfaces/psd2/psd2_descriptors.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tests/support/hex.h"

namespace {

using namespace ara::com::internal::vsomeip::common;
using namespace kro::services::psd2::datatypes;
using kro::services::psd2::psd2_binding::vsomeip::descriptors::Interface;
using support::Bytes;

template <typename Sequence>
ByteVector Encode(const Sequence& value) {
  ByteVector bytes;
  SequenceContainerSerializer<Sequence>(value).pushbackTo(bytes);
  return bytes;
}

/// Counts the members of a tree that are absent, and the sequences that are empty.
struct MissingMembers {
  int count = 0;

  template <typename T>
  void operator()(std::uint16_t, const char*, const ara::core::Optional<T>& member) {
    member ? Visit(*member) : void(++count);
  }
  template <typename T>
  void Visit(const T& value) {
    if constexpr (kIsSequence<T>) {
      count += value.empty() ? 1 : 0;
      for (const auto& element : value) {
        Visit(element);
      }
    } else if constexpr (kIsRecord<T>) {
      T::enumerate(value, *this);
    }
  }
};

// Another encoder's bytes, decoded and encoded again: a member that is missing, of another type or in another place
// changes them; one that the other encoder does not know is absent.
TEST(Psd2Records, EveryFieldAgreesWithAnIndependentEncoder) {
  std::ifstream file(PSD2_GOLDEN);
  std::map<std::string, ByteVector> golden;
  for (std::string name, hex; file >> name >> hex;) {
    golden[name] = Bytes(hex);
  }
  ForEachType(Interface::Fields{}, [&](auto field) {
    using Field = decltype(field);
    using Value = typename Field::ValueType;
    const ByteVector& bytes = golden[Field::name];
    ASSERT_GT(bytes.size(), 100U) << Field::name;
    const auto value = DeserializeFieldValue<Value>(bytes.data(), bytes.size());
    EXPECT_EQ(Encode(value), bytes) << Field::name;
    MissingMembers missing;
    missing.Visit(value);
    EXPECT_EQ(missing.count, 0) << Field::name;

    EXPECT_EQ(Encode(Value{}), Bytes("00000000")) << Field::name;
    EXPECT_EQ(Encode(Value(1)), Bytes("00000004 00000000")) << Field::name;
    golden.erase(Field::name);
  });
  EXPECT_TRUE(golden.empty());
}

TEST(Psd2Records, DataIdsThatAreNotThePosition) {
  DT_reference reference;
  reference.member0 = std::uint8_t{7};
  reference.member1 = std::uint64_t{0x0102030405060708};
  reference.member2 = std::uint8_t{9};
  EXPECT_EQ(Encode(std::vector{reference}), Bytes("00000014 00000010 3001 0102030405060708 0000 07 0002 09"));

  DT_generalSpeedLimit limit;
  limit.member1 = std::uint8_t{1};
  limit.member3.emplace().member0.emplace();
  EXPECT_EQ(Encode(std::vector{limit}), Bytes("00000013 0000000f 0001 01 4003 00000006 4000 00000000"));

  DT_lane lane;
  lane.member2 = std::uint32_t{1};
  lane.member5.emplace().member0 = std::uint32_t{2};
  lane.member9 = std::uint8_t{3};
  EXPECT_EQ(Encode(std::vector{lane}), Bytes("00000019 00000015 2002 00000001 4005 00000006 2000 00000002 0009 03"));

  DT_link::Segment segment;
  segment.member4.emplace().member0 = std::uint32_t{1};
  segment.member6 = std::uint8_t{2};
  DT_link link;
  link.member8.emplace().member0 = std::vector{segment};
  EXPECT_EQ(Encode(std::vector{link}), Bytes("00000023 0000001f 4008 00000019 4000 00000013"
                                             "0000000f 4004 00000006 2000 00000001 0006 02"));

  DT_linkLayerLongRange_struct layer;
  layer.member0 = LayerBytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  EXPECT_EQ(Encode(std::vector{layer}), Bytes("0000001a 00000016 4000 00000010 0102030405060708090a0b0c0d0e0f10"));
}

TEST(Psd2Records, ACopySharesNothingWithItsOriginal) {
  DT_linkLayerShortRange_struct original;
  auto& link = original.member1.emplace(1).front();
  link.member1.emplace().member0.emplace(1).front().member1 = std::uint64_t{1};
  original.layerInfo.emplace().member1.emplace().member0.emplace(1).front().member0 = std::string("map");
  const ByteVector before = Encode(std::vector{original});

  auto copy = original;
  copy.member1->front().member1->member0->front().member1 = std::uint64_t{2};
  *copy.layerInfo->member1->member0->front().member0 += " 2";
  EXPECT_EQ(Encode(std::vector{original}), before);
  EXPECT_NE(Encode(std::vector{copy}), before);
  original = {};
  EXPECT_EQ(copy.layerInfo->member1->member0->front().member0, std::string("map 2"));
}

}  // namespace
