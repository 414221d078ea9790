#include "tools/tarn7/values/printable.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace tarn7::tool {

namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

/// What a terminal, or whoever breaks text into lines, obeys instead of showing it: C0, DEL and C1, the marks that turn
/// the direction of text, and the separators of lines and paragraphs.
constexpr Range kObeyed[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                             {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool IsObeyed(std::uint32_t code) {
  return std::any_of(std::begin(kObeyed), std::end(kObeyed),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

/// A character of UTF-8 text; of size 0 where there is none.
struct Character {
  std::uint32_t code;
  std::size_t size;
};

Character FirstOf(std::string_view text) {
  struct Form {
    unsigned char lead;  // the first byte's fixed bits, which are as many ones as there are bytes, and a zero
    unsigned char mask;
    std::uint32_t least;  // what fewer bytes could hold is none
  };
  constexpr Form kForms[] = {{0x00, 0x80, 0}, {0xC0, 0xE0, 0x80}, {0xE0, 0xF0, 0x800}, {0xF0, 0xF8, 0x10000}};
  constexpr Character kNone{0, 0};
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto* const form = std::find_if(std::begin(kForms), std::end(kForms),
                                        [&](const Form& each) { return (byte(0) & each.mask) == each.lead; });
  const auto size = static_cast<std::size_t>(form - std::begin(kForms)) + 1;
  if (form == std::end(kForms) || size > text.size()) {
    return kNone;
  }
  std::uint32_t code = byte(0) & ~static_cast<unsigned>(form->mask);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) {
      return kNone;
    }
    code = code << 6U | (byte(i) & 0x3FU);
  }
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < form->least || code > 0x10FFFF || isSurrogate ? kNone : Character{code, size};
}

void AppendEscape(std::string& text, const char* format, std::uint32_t number) {
  char escape[8];
  std::snprintf(escape, sizeof(escape), format, static_cast<unsigned>(number));
  text += escape;
}

bool IsPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

bool IsPlainInShell(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         std::string_view("_./:@%+=,-").find(c) != std::string_view::npos;
}

}  // namespace

std::string Printable(std::string_view text, std::string_view kept) {
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const Character character = FirstOf(text);
    if (character.size == 0) {
      AppendEscape(printable, "\\x%02x", static_cast<unsigned char>(text.front()));
      text.remove_prefix(1);
      continue;
    }
    if (IsObeyed(character.code) && kept.find(text.front()) == std::string_view::npos) {
      AppendEscape(printable, "\\u%04x", character.code);
    } else {
      printable += text.substr(0, character.size);
    }
    text.remove_prefix(character.size);
  }
  return printable;
}

std::string ShellWord(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), IsPlainInShell)) {
    return std::string(text);
  }
  const bool isPrintable = std::all_of(text.begin(), text.end(), IsPrintableAscii);
  std::string word = isPrintable ? "'" : "$'";
  for (const char c : text) {
    if (!IsPrintableAscii(c)) {
      AppendEscape(word, "\\x%02x", static_cast<unsigned char>(c));
    } else if (isPrintable) {
      word += c == '\'' ? R"('\'')" : std::string(1, c);
    } else {
      word += (c == '\'' || c == '\\' ? "\\" : "") + std::string(1, c);
    }
  }
  return word + '\'';
}

}  // namespace tarn7::tool
