#include "tools/tarn7/values/json_checks.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include <nlohmann/json.hpp>

#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

namespace {

constexpr int kNoDigit = -1;

int HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  if (digit >= 'a' && digit <= 'f') {
    return digit - 'a' + 10;
  }
  return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : kNoDigit;
}

[[noreturn]] void FailType(const char* expected, const Json& json, const Place& place) {
  place.Fail(std::string("expected ") + expected + ", found " + Summary(json));
}

}  // namespace

std::string Summary(const Json& json) {
  constexpr std::size_t kShown = 60;
  if (json.is_structured() && !json.empty()) {
    return json.type_name();
  }
  const std::string text = ToText(json);
  return text.size() > kShown ? json.type_name() : text;
}

bool BoolFromJson(const Json& json, const Place& place) {
  if (!json.is_boolean()) {
    FailType("true or false", json, place);
  }
  return json.get<bool>();
}

const std::string& StringFromJson(const Json& json, const Place& place) {
  if (!json.is_string()) {
    FailType("a string", json, place);
  }
  return json.get_ref<const std::string&>();
}

std::uint64_t IntegerFromJson(const Json& json, std::size_t bits, bool isSigned, const Place& place) {
  const std::string name =
      (bits == 8 ? "an " : "a ") + std::to_string(bits) + (isSigned ? "-bit signed integer" : "-bit unsigned integer");
  if (!json.is_number()) {
    place.Fail("expected " + name + ", found " + Summary(json));
  }
  const std::uint64_t max = std::numeric_limits<std::uint64_t>::max() >> (64 - bits + (isSigned ? 1 : 0));
  const std::int64_t min = isSigned ? -static_cast<std::int64_t>(max) - 1 : 0;
  // What is negative is signed here, everything else that is whole and below 2^64 is unsigned.
  if (json.is_number_unsigned()) {
    const auto number = json.get<std::uint64_t>();
    if (number <= max) {
      return number;
    }
  } else if (json.is_number_integer()) {
    const auto number = json.get<std::int64_t>();
    if (number >= min) {
      return static_cast<std::uint64_t>(number);
    }
  }
  place.Fail(ToText(json) + " does not fit " + name + " (" + std::to_string(min) + " to " + std::to_string(max) + ")");
}

std::vector<std::uint8_t> BytesFromHex(const Json& json, const Place& place) {
  if (!json.is_string()) {
    FailType("bytes as a string of hex digits", json, place);
  }
  return BytesFromHex(json.get_ref<const std::string&>(), place);
}

std::vector<std::uint8_t> BytesFromHex(const std::string& text, const Place& place) {
  if (text.size() % 2 != 0) {
    place.Fail("bytes need two hex digits each, found " + std::to_string(text.size()) + " digits");
  }
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (high == kNoDigit || low == kNoDigit) {
      place.Fail("no hex digits at position " + std::to_string(i) + " of the string");
    }
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return bytes;
}

double NumberFromJson(const Json& json, const Place& place) {
  if (json.is_number()) {
    return json.get<double>();
  }
  if (json == "NaN") {
    return std::numeric_limits<double>::quiet_NaN();
  }
  if (json == "Infinity") {
    return std::numeric_limits<double>::infinity();
  }
  if (json == "-Infinity") {
    return -std::numeric_limits<double>::infinity();
  }
  FailType(R"(a number, "NaN", "Infinity" or "-Infinity")", json, place);
}

void RequireArray(const Json& json, const Place& place) {
  if (!json.is_array()) {
    FailType("an array", json, place);
  }
}

void RequireObject(const Json& json, const Place& place) {
  if (!json.is_object()) {
    FailType("an object", json, place);
  }
}

const Json& RequiredMember(const Json& object, const char* name, const Place& place) {
  RequireObject(object, place);
  const auto found = object.find(name);
  if (found == object.end()) {
    Place(place, name).Fail("this member is required");
  }
  return *found;
}

const std::string& NameFromJson(const Json& json, const Place& place) {
  const std::string& name = StringFromJson(json, place);
  const auto isPart = [](unsigned char letter) {
    return letter < 0x80 && (std::isalnum(letter) != 0 || letter == '_');
  };
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front())) != 0 ||
      !std::all_of(name.begin(), name.end(), isPart)) {
    place.Fail(Summary(json) + " is no name: letters, digits and underscores, of which the first is no digit");
  }
  return name;
}

const std::string& PhraseFromJson(const Json& json, const Place& place) {
  const std::string& text = StringFromJson(json, place);
  if (std::any_of(text.begin(), text.end(), [](unsigned char letter) { return std::iscntrl(letter) != 0; })) {
    place.Fail("control characters have no place in a text");
  }
  return text;
}

void RequireMembersAmong(const Json& object, const std::vector<std::string>& names, const Place& place) {
  RequireObject(object, place);
  for (const auto& member : object.items()) {
    if (std::find(names.begin(), names.end(), member.key()) == names.end()) {
      Place(place, member.key()).Fail("no such member; did you mean " + Nearest(member.key(), names) + "?");
    }
  }
}

}  // namespace tarn7::tool
