#include "tools/tarn7/values/json.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tools/tarn7/error.h"

namespace tarn7::tool {

namespace {

/// The library's texts begin with an identifier of its own in brackets.
std::string WithoutIdentifier(const std::string& text) {
  const std::size_t end = text.find("] ");
  return end == std::string::npos ? text : text.substr(end + 2);
}

/// The fewest digits that identify the number, which the JSON library's own writer does not always find.
std::string ToText(double number) {
  char digits[32];
  std::string text(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

void AppendTo(std::string& text, const Json& json) {
  if (json.is_number_float()) {
    text += ToText(json.get<double>());
    return;
  }
  if (!json.is_structured()) {
    text += json.dump(-1, ' ', false, Json::error_handler_t::replace);
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

}  // namespace

std::string ReadText(const std::string& path) {
  if (path == "-") {
    return std::string(std::istreambuf_iterator<char>(std::cin), {});
  }
  std::ifstream file(path);
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open() || file.bad()) {
    throw ValueError(path + " cannot be read: " + std::strerror(errno));
  }
  return text;
}

Json ParseJson(std::string_view text, const std::string& source) {
  try {
    return Json::parse(text);
  } catch (const Json::exception& error) {
    throw ValueError(source + ": " + WithoutIdentifier(error.what()));
  }
}

Json ParseJsonFile(const std::string& path) { return ParseJson(ReadText(path), path == "-" ? "standard input" : path); }

Json ReadJsonArgument(const std::string& argument) {
  return argument == "-" ? ParseJsonFile("-") : ParseJson(argument, "JSON");
}

std::string ToText(const Json& json) {
  std::string text;
  AppendTo(text, json);
  return text;
}

std::string ToHex(const unsigned char* data, std::size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * size);
  for (std::size_t i = 0; i < size; ++i) {
    text.push_back(kDigits[data[i] >> 4U]);
    text.push_back(kDigits[data[i] & 0xFU]);
  }
  return text;
}

}  // namespace tarn7::tool
