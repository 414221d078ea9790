#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/place.h"

namespace tarn7::tool {

/// What to show of JSON that is not what was expected: it may be long, and nested as deep as whoever wrote it liked.
std::string Summary(const Json& json);

// Each of these throws ValueError, which names the place, for JSON of another type or out of range.

bool BoolFromJson(const Json& json, const Place& place);
std::string StringFromJson(const Json& json, const Place& place);
/// Hex digits in either case, two per byte.
std::vector<std::uint8_t> BytesFromHex(const Json& json, const Place& place);
/// A number, or "NaN", "Infinity", "-Infinity".
double NumberFromJson(const Json& json, const Place& place);
void RequireArray(const Json& json, const Place& place);
/// An object all of whose members are among `names`.
void RequireObjectOf(const Json& json, const std::vector<std::string>& names, const Place& place);

/// What an integer type is called towards the user: "32-bit unsigned integer".
template <typename T>
std::string IntegerName() {
  return std::to_string(8 * sizeof(T)) + (std::is_signed_v<T> ? "-bit signed integer" : "-bit unsigned integer");
}

template <typename T>
T IntegerFromJson(const Json& json, const Place& place) {
  using Limits = std::numeric_limits<T>;
  if (!json.is_number()) {
    place.Fail("expected a " + IntegerName<T>() + ", found " + Summary(json));
  }
  // What is negative is signed here, everything else that is whole and below 2^64 is unsigned.
  if (json.is_number_unsigned()) {
    const auto number = json.get<std::uint64_t>();
    if (number <= static_cast<std::uint64_t>(Limits::max())) {
      return static_cast<T>(number);
    }
  } else if (json.is_number_integer()) {
    const auto number = json.get<std::int64_t>();
    if (std::is_signed_v<T> && number < 0 && number >= static_cast<std::int64_t>(Limits::min())) {
      return static_cast<T>(number);
    }
  }
  place.Fail(ToText(json) + " does not fit a " + IntegerName<T>() + " (" + std::to_string(Limits::min()) + " to " +
             std::to_string(Limits::max()) + ")");
}

template <typename T>
T FloatFromJson(const Json& json, const Place& place) {
  const double number = NumberFromJson(json, place);
  const auto value = static_cast<T>(number);
  if (std::isfinite(number) && !std::isfinite(value)) {
    place.Fail(ToText(json) + " does not fit a " + std::to_string(8 * sizeof(T)) + "-bit float");
  }
  return value;
}

}  // namespace tarn7::tool
