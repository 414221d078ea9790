#include "tools/tarn7/values/json.h"

#include <cerrno>
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

}  // namespace

Json ParseJson(std::string_view text, const std::string& source) {
  try {
    return Json::parse(text);
  } catch (const Json::exception& error) {
    throw ValueError(source + ": " + WithoutIdentifier(error.what()));
  }
}

Json ParseJsonFile(const std::string& path) {
  if (path == "-") {
    return ParseJson(std::string(std::istreambuf_iterator<char>(std::cin), {}), "standard input");
  }
  std::ifstream file(path);
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open() || file.bad()) {
    throw ValueError(path + " cannot be read: " + std::strerror(errno));
  }
  return ParseJson(text, path);
}

std::string ToText(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

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
