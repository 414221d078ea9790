#include "tools/tarn7/values/encode.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/json_checks.h"

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

class Encoder {
 public:
  void Write(const ValueType& type, const Json& json, const Place& place) {
    switch (type.kind) {
      case Kind::kBool:
        AppendNumber(bytes_, BoolFromJson(json, place) ? 1 : 0, type.size);
        break;
      case Kind::kInteger:
        AppendNumber(bytes_, IntegerFromJson(json, 8 * type.size, type.is_signed, place), type.size);
        break;
      case Kind::kFloat:
        Float(NumberFromJson(json, place), type.size, place);
        break;
      case Kind::kString: {
        const std::string& text = StringFromJson(json, place);
        AppendWithLength(bytes_, [&] { bytes_.insert(bytes_.end(), text.begin(), text.end()); });
        break;
      }
      case Kind::kBytes: {
        const std::vector<std::uint8_t> bytes = BytesFromHex(json, place);
        if (type.size != 0 && bytes.size() != type.size) {
          place.Fail("expected exactly " + Counted(type.size, "byte") + ", found " + std::to_string(bytes.size()));
        }
        AppendWithLength(bytes_, [&] { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); });
        break;
      }
      case Kind::kSequence:
        RequireArray(json, place);
        AppendWithLength(bytes_, [&] {
          for (std::size_t i = 0; i < json.size(); ++i) {
            Write(*type.element, json[i], Place(place, i));
          }
        });
        break;
      case Kind::kRecord:
        AppendWithLength(bytes_, [&] { Members(*type.record, json, place); });
        break;
    }
  }

  Payload Take() { return std::move(bytes_); }

 private:
  void Float(double number, std::size_t size, const Place& place) {
    if (size == sizeof(float) && std::isfinite(number) && !std::isfinite(static_cast<float>(number))) {
      std::string text;
      AppendNumber(text, number);
      place.Fail(text + " does not fit a 32-bit float");
    }
    AppendNumber(bytes_, 0, size);
    StoreFloat(number, bytes_.data() + bytes_.size() - size, size);
  }

  void Members(const RecordType& record, const Json& json, const Place& place) {
    RequireObject(json, place);
    std::size_t known = 0;
    for (const Member& member : record.members) {
      const auto found = json.find(member.name);
      if (found != json.end()) {
        ++known;
        AppendNumber(bytes_, TagOf(member), common::kTagSize);
        Write(*member.type, *found, Place(place, member.name));
      }
    }
    if (known != json.size()) {
      std::vector<std::string> names;
      for (const Member& member : record.members) {
        names.push_back(member.name);
      }
      RequireMembersAmong(json, names, place);
    }
  }

  Payload bytes_;
};

}  // namespace

Payload Encode(const ValueType& type, const Json& value) {
  Encoder encoder;
  encoder.Write(type, value, Place());
  return encoder.Take();
}

Payload EncodeArgument(const ValueType& type, const std::string& argument) {
  return Encode(type, argument == "-" ? ParseJsonFile("-") : ParseJson(argument, "JSON"));
}

}  // namespace tarn7::tool
