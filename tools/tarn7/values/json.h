#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace tarn7::tool {

/// Members keep their order: that of the record. Only sources that look into one include <nlohmann/json.hpp>.
using Json = nlohmann::ordered_json;

/// What a file holds. Throws ValueError where it cannot be read, or holds more than `limit` bytes.
std::string ReadFile(const std::string& path, std::size_t limit = std::string::npos);
/// The same, or standard input where `path` is "-".
std::string ReadText(const std::string& path);

/// Throws ValueError, which names line and column, for what is no JSON text. `source` says where the text is from.
Json ParseJson(std::string_view text, const std::string& source);
/// The same, and throws ValueError, which names the place, where an object has two members of one name.
Json ParseJsonWithoutDuplicates(std::string_view text, const std::string& source);
/// Reads a file, or standard input where `path` is "-". Throws ValueError where it cannot be read.
Json ParseJsonFile(const std::string& path);

/// On one line, without control characters. Bytes in a string that are no UTF-8 are shown as U+FFFD, so such a string
/// cannot be read back.
std::string ToText(const Json& json);
/// Appends a string in quotes, in the same way.
void AppendString(std::string& text, std::string_view string);
/// Appends a number with the fewest digits that identify it.
void AppendNumber(std::string& text, double number);

/// Two lower-case hex digits per byte.
std::string ToHex(const unsigned char* data, std::size_t size);
void AppendHex(std::string& text, const unsigned char* data, std::size_t size);

}  // namespace tarn7::tool
