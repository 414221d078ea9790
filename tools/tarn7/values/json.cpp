#include "tools/tarn7/values/json.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/tarn7/error.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

/// The library's texts begin with an identifier of its own in brackets.
std::string WithoutIdentifier(const std::string& text) {
  const std::size_t end = text.find("] ");
  return end == std::string::npos ? text : text.substr(end + 2);
}

bool IsPlain(char character) { return character >= ' ' && character <= '~' && character != '"' && character != '\\'; }

void AppendTo(std::string& text, const Json& json) {
  if (json.is_number_float()) {
    AppendNumber(text, json.get<double>());
    return;
  }
  if (!json.is_structured()) {
    text += Printable(json.dump(-1, ' ', false, Json::error_handler_t::replace));
    return;
  }
  text += json.is_array() ? '[' : '{';
  const char* separator = "";
  for (const auto& item : json.items()) {
    text += separator;
    separator = ",";
    if (json.is_object()) {
      AppendTo(text, item.key());
      text += ':';
    }
    AppendTo(text, item.value());
  }
  text += json.is_array() ? ']' : '}';
}

/// What an event of the parser is in: an object's member, or an array's element.
struct Level {
  explicit Level(bool isArray) : is_array(isArray) {}

  bool is_array;
  std::size_t index = 0;       // of the element
  std::set<std::string> keys;  // the object's so far
  std::string key;             // the last of them
};

[[noreturn]] void FailDuplicate(const std::vector<Level>& levels) {
  std::string place;
  for (const Level& level : levels) {
    place += level.is_array ? '[' + std::to_string(level.index) + ']' : (place.empty() ? "" : ".") + level.key;
  }
  throw ValueError(place + ": there are two members of this name");
}

}  // namespace

std::string ReadFile(const std::string& path, std::size_t limit) {
  std::ifstream file(path);
  std::string text;
  try {
    for (std::istreambuf_iterator<char> next(file), end; next != end && text.size() <= limit; ++next) {
      text.push_back(*next);
    }
  } catch (const std::ios_base::failure&) {  // a folder
    file.setstate(std::ios_base::badbit);
  }
  if (!file.is_open() || file.bad()) {
    throw ValueError(path + " cannot be read: " + std::strerror(errno));
  }
  if (text.size() > limit) {
    throw ValueError(path + " is larger than " + std::to_string(limit) + " bytes");
  }
  return text;
}

std::string ReadText(const std::string& path) {
  return path == "-" ? std::string(std::istreambuf_iterator<char>(std::cin), {}) : ReadFile(path);
}

Json ParseJson(std::string_view text, const std::string& source) {
  try {
    return Json::parse(text);
  } catch (const Json::exception& error) {
    throw ValueError(source + ": " + WithoutIdentifier(error.what()));
  }
}

Json ParseJsonWithoutDuplicates(std::string_view text, const std::string& source) {
  using Event = Json::parse_event_t;
  std::vector<Level> levels;
  const auto check = [&levels](int /*depth*/, Event event, const Json& parsed) {
    if (event == Event::key) {
      Level& object = levels.back();
      object.key = parsed.get<std::string>();
      if (!object.keys.insert(object.key).second) {
        FailDuplicate(levels);
      }
    } else if (event == Event::object_start || event == Event::array_start) {
      levels.emplace_back(event == Event::array_start);
    } else {
      if (event != Event::value) {
        levels.pop_back();
      }
      if (!levels.empty()) {
        ++levels.back().index;
      }
    }
    return true;
  };
  try {
    return Json::parse(text, check);
  } catch (const Json::exception& error) {
    throw ValueError(source + ": " + WithoutIdentifier(error.what()));
  }
}

Json ParseJsonFile(const std::string& path) { return ParseJson(ReadText(path), path == "-" ? "standard input" : path); }

std::string ToText(const Json& json) {
  std::string text;
  AppendTo(text, json);
  return text;
}

void AppendString(std::string& text, std::string_view string) {
  if (std::all_of(string.begin(), string.end(), IsPlain)) {
    text += '"';
    text += string;
    text += '"';
  } else {
    AppendTo(text, Json(string));
  }
}

// The JSON library's own writer does not always find the fewest digits.
void AppendNumber(std::string& text, double number) {
  char digits[32];
  const std::string_view written(
      digits, static_cast<std::size_t>(std::to_chars(digits, digits + sizeof(digits), number).ptr - digits));
  text += written;
  if (written.find_first_of(".e") == std::string_view::npos) {
    text += ".0";
  }
}

std::string ToHex(const unsigned char* data, std::size_t size) {
  std::string text;
  AppendHex(text, data, size);
  return text;
}

void AppendHex(std::string& text, const unsigned char* data, std::size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  text.reserve(text.size() + 2 * size);
  for (std::size_t i = 0; i < size; ++i) {
    text.push_back(kDigits[data[i] >> 4U]);
    text.push_back(kDigits[data[i] & 0xFU]);
  }
}

}  // namespace tarn7::tool
