#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/place.h"

namespace tarn7::tool {

/// What to show of JSON that is not what was expected: it may be long, and nested as deep as whoever wrote it liked.
std::string Summary(const Json& json);

// Each of these throws ValueError, which names the place, for JSON of another type or out of range.

bool BoolFromJson(const Json& json, const Place& place);
const std::string& StringFromJson(const Json& json, const Place& place);
/// An integer of 8 to 64 bits; a negative one as its two's complement.
std::uint64_t IntegerFromJson(const Json& json, std::size_t bits, bool isSigned, const Place& place);
/// Hex digits in either case, two per byte.
std::vector<std::uint8_t> BytesFromHex(const Json& json, const Place& place);
std::vector<std::uint8_t> BytesFromHex(const std::string& text, const Place& place);
/// A number, or "NaN", "Infinity", "-Infinity".
double NumberFromJson(const Json& json, const Place& place);
void RequireArray(const Json& json, const Place& place);
void RequireObject(const Json& json, const Place& place);
const Json& RequiredMember(const Json& object, const char* name, const Place& place);
/// Letters, digits and underscores, of which the first is no digit.
const std::string& NameFromJson(const Json& json, const Place& place);
/// A text without control characters.
const std::string& PhraseFromJson(const Json& json, const Place& place);
/// An object all of whose members are among `names`, of which there is at least one.
void RequireMembersAmong(const Json& object, const std::vector<std::string>& names, const Place& place);

}  // namespace tarn7::tool
