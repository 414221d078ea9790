// The tool's codec, which goes by descriptions, against the library's, which goes by types: every field, and bytes from
// whoever it may be.
#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "interfaces/interface_list.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tests/serialization/sample_records.h"
#include "tests/tool/sample_model.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/model/model_reader.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/payload_check.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {
namespace {

using ara::com::internal::vsomeip::common::ForEachType;

/// What the library makes of a payload. Throws std::runtime_error where it refuses.
using Reencode = Payload (*)(const Payload&);

template <typename Value>
Payload ReencodeTyped(const Payload& payload) {
  Payload bytes;
  const auto value = common::DeserializeFieldValue<Value>(payload.data(), payload.size());
  common::SequenceContainerSerializer<Value>(value).pushbackTo(bytes);
  return bytes;
}

struct Subject {
  std::string name;
  const ValueType* type;
  Reencode reencode;
};

const InterfaceTable& Interfaces() {
  static const InterfaceTable interfaces;
  return interfaces;
}

std::vector<Subject> AllFields() {
  static const Interface sample = ReadModel(sample::kModel);
  std::vector<Subject> subjects = {
      {"sample", sample.fields.front().type, &ReencodeTyped<std::vector<sample::Everything>>}};
  const auto add = [&subjects](auto interface) {
    ForEachType(typename decltype(interface)::Fields{}, [&subjects](auto field) {
      using Field = decltype(field);
      const std::string address = std::string(decltype(interface)::Service::name) + '/' + Field::name;
      subjects.push_back(
          {address, Interfaces().FindAddress(address).field->type, &ReencodeTyped<typename Field::ValueType>});
    });
  };
  ForEachType(kro::services::ConsumedInterfaces{}, add);
  ForEachType(kro::services::ProvidedInterfaces{}, add);
  return subjects;
}

TEST(Models, SayWhatTheLibraryHas) {
  std::size_t count = 0;
  const auto compare = [&count](Interface::Role role, auto descriptor) {
    using Service = typename decltype(descriptor)::Service;
    const Interface& interface = Interfaces().FindInterface(Service::name);
    EXPECT_EQ(interface.role, role);
    EXPECT_EQ(interface.service_id, Service::service_id);
    EXPECT_EQ(interface.ara_service_id, Service::ara_service_id);
    EXPECT_EQ(interface.major_version, Service::major_version);
    EXPECT_EQ(interface.minor_version, Service::minor_version);
    auto field = interface.fields.begin();
    ForEachType(typename decltype(descriptor)::Fields{}, [&field, &interface](auto expected) {
      ASSERT_NE(field, interface.fields.end());
      EXPECT_EQ(field->name, expected.name);
      EXPECT_EQ(field->getter, expected.getter_method_id);
      EXPECT_EQ(field->event, expected.event_id);
      EXPECT_EQ(field->eventgroup, expected.event_groups[0]);
      if constexpr (expected.is_mutable) {
        EXPECT_EQ(field->setter, expected.setter_method_id);
      } else {
        EXPECT_FALSE(field->HasSetter());
      }
      ++field;
    });
    EXPECT_EQ(field, interface.fields.end());
    ++count;
  };
  ForEachType(kro::services::ConsumedInterfaces{}, [&](auto each) { compare(Interface::Role::kConsumed, each); });
  ForEachType(kro::services::ProvidedInterfaces{}, [&](auto each) { compare(Interface::Role::kProvided, each); });
  EXPECT_EQ(count, Interfaces().All().size());
}

/// Whether two payloads differ only where text does not tell: a bool may be any byte but 0, a NaN has many forms, and a
/// string that is no UTF-8 cannot be read back.
bool AreAlikeInText(const std::string& text, const Payload& ours, const Payload& theirs) {
  if (text.find("\xEF\xBF\xBD") != std::string::npos || text.find("\"NaN\"") != std::string::npos) {
    return true;
  }
  return std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(),
                    [](unsigned char mine, unsigned char other) { return mine == other || (mine == 1 && other > 1); });
}

/// Has both codecs read the payload. Whether they took it.
bool Compare(const Subject& subject, const Payload& payload) {
  std::optional<Payload> theirs;
  std::string refusal;
  try {
    theirs = subject.reencode(payload);
  } catch (const std::runtime_error& error) {
    refusal = error.what();
  }
  try {
    const std::string text = PayloadText(*subject.type, payload);
    EXPECT_TRUE(theirs) << "only the library refuses: " << refusal;
    if (theirs) {
      EXPECT_EQ(PayloadText(*subject.type, *theirs), text);
      EXPECT_TRUE(AreAlikeInText(text, Encode(*subject.type, Json::parse(text)), *theirs)) << text;
    }
  } catch (const PayloadError& error) {
    EXPECT_FALSE(theirs) << "only the tool refuses: " << error.what();
    EXPECT_THAT(error.what(), testing::EndsWith(refusal));
  }
  return theirs.has_value();
}

/// A few changes of the kind that errors and attackers make.
Payload Mutated(Payload payload, std::mt19937& random) {
  const auto place = [&payload, &random] { return random() % payload.size(); };
  for (std::size_t changes = 1 + random() % 3; changes > 0 && !payload.empty(); --changes) {
    switch (random() % 6) {
      case 0:
        payload[place()] ^= static_cast<unsigned char>(1U << (random() % 8));
        break;
      case 1:
        payload[place()] = static_cast<unsigned char>(random());
        break;
      case 2:  // a length, or something else, a little greater or smaller
        payload[place()] += static_cast<unsigned char>(random() % 2 == 0 ? 1 : -1);
        break;
      case 3:  // other wire types and ids
        payload[place()] = static_cast<unsigned char>((random() % 8) << 4U);
        break;
      case 4:
        payload.resize(place());
        break;
      default:  // the last bytes twice; with the length, often still a value
        payload.insert(payload.end(), payload.end() - static_cast<std::ptrdiff_t>(1 + place()), payload.end());
        break;
    }
    if (payload.size() >= common::kLengthFieldSize && random() % 2 == 0) {
      StoreNumber(payload.size() - common::kLengthFieldSize, payload.data(), common::kLengthFieldSize);
    }
  }
  return payload;
}

// A refusal is an exception, and those take ten to fifty times as long with a sanitizer.
constexpr std::size_t kPayloads = sizeof TARN7_SANITIZE > 1 ? 300 : 4000;

TEST(Codec, AgreesWithTheLibraryOnWhateverArrives) {
  std::mt19937 random;
  ValueSource source;
  for (const Subject& subject : AllFields()) {
    SCOPED_TRACE(subject.name);
    const Payload whole = source.First(*subject.type);
    ASSERT_TRUE(Compare(subject, whole));
    const std::size_t budget = std::clamp<std::size_t>(1000 * kPayloads / whole.size(), 200, kPayloads);
    int accepted = 0;
    for (std::size_t i = 0; i < budget && !testing::Test::HasFailure(); ++i) {
      accepted += Compare(subject, Mutated(whole, random)) ? 1 : 0;
      Payload cut = whole;
      cut.resize(i < whole.size() && whole.size() <= budget ? i : random() % whole.size());
      EXPECT_FALSE(Compare(subject, cut));
      // The length of the sequence made to fit what is left of it.
      if (cut.size() >= common::kLengthFieldSize) {
        StoreNumber(cut.size() - common::kLengthFieldSize, cut.data(), common::kLengthFieldSize);
        accepted += Compare(subject, cut) ? 1 : 0;
      }
      Payload noise(common::kLengthFieldSize + random() % 40);
      std::generate(noise.begin(), noise.end(), [&random] { return random() % 2 == 0 ? random() % 256 : 0; });
      StoreNumber(noise.size() - common::kLengthFieldSize, noise.data(), common::kLengthFieldSize);
      accepted += Compare(subject, noise) ? 1 : 0;
    }
    ASSERT_FALSE(testing::Test::HasFailure());
    EXPECT_GT(accepted, 20);
  }
}

}  // namespace
}  // namespace tarn7::tool
