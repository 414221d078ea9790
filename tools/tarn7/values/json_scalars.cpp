#include "tools/tarn7/values/json_scalars.h"

#include <algorithm>
#include <string_view>

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

std::string StringFromJson(const Json& json, const Place& place) {
  if (!json.is_string()) {
    FailType("a string", json, place);
  }
  return json.get<std::string>();
}

std::vector<std::uint8_t> BytesFromHex(const Json& json, const Place& place) {
  if (!json.is_string()) {
    FailType("bytes as a string of hex digits", json, place);
  }
  const auto& text = json.get_ref<const std::string&>();
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

void RequireObjectOf(const Json& json, const std::vector<std::string>& names, const Place& place) {
  if (!json.is_object()) {
    FailType("an object", json, place);
  }
  for (const auto& member : json.items()) {
    if (std::find(names.begin(), names.end(), member.key()) == names.end()) {
      Place(place, member.key()).Fail("no such member; did you mean " + Nearest(member.key(), names) + "?");
    }
  }
}

}  // namespace tarn7::tool
