#include "tools/tarn7/values/printable.h"

#include <cstdio>

namespace tarn7::tool {

std::string Printable(std::string_view text, std::string_view kept) {
  constexpr unsigned char kDelete = 0x7F;
  constexpr unsigned char kLead = 0xC2;  // of U+0080 to U+00BF in UTF-8, whose second byte is the number's last
  constexpr unsigned char kLast = 0x9F;
  std::string printable;
  printable.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto code = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    const bool isHigh = code == kLead && next > kDelete && next <= kLast;
    if (isHigh) {
      code = next;
      ++i;
    }
    if (isHigh || ((code < ' ' || code == kDelete) && kept.find(text[i]) == std::string_view::npos)) {
      char escape[8];
      std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(code));
      printable += escape;
    } else {
      printable += text[i];
    }
  }
  return printable;
}

}  // namespace tarn7::tool
