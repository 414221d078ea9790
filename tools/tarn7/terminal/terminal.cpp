#include "tools/tarn7/terminal/terminal.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarn7::tool {

namespace {

// Control sequences that every terminal of the last decades knows.
constexpr std::string_view kSecondScreen = "\x1b[?1049h";
constexpr std::string_view kHideCursor = "\x1b[?25l";
constexpr std::string_view kRestore = "\x1b[?25h\x1b[?1049l";  // cursor and first screen
constexpr std::string_view kHome = "\x1b[H";
constexpr std::string_view kClearToEndOfLine = "\x1b[K";
constexpr std::string_view kClearToEnd = "\x1b[J";

int terminalDescriptor = -1;  // where one is in use
std::terminate_handler previousHandler = nullptr;

void Restore() {
  // There is nobody to tell that it cannot be written.
  [[maybe_unused]] const ssize_t written = ::write(terminalDescriptor, kRestore.data(), kRestore.size());
}

bool StartsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

}  // namespace

Terminal::Terminal(Output& output) : output_(output) {
  terminalDescriptor = output.Descriptor();
  previousHandler = std::set_terminate([] {
    Restore();
    previousHandler();
  });
  output_.Write(std::string(kSecondScreen) + std::string(kHideCursor));
}

Terminal::~Terminal() {
  std::set_terminate(previousHandler);
  Restore();
}

Terminal::Size Terminal::GetSize() const {
  constexpr Size kUsual{80, 24};
  winsize size{};
  if (::ioctl(output_.Descriptor(), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return kUsual;
  }
  return {size.ws_col, size.ws_row};
}

void Terminal::Show(const std::vector<std::string>& lines) {
  const Size size = GetSize();
  // At once, and over what is there: clearing it first would flicker.
  std::string text(kHome);
  const char* separator = "";
  for (std::size_t i = 0; i < std::min(lines.size(), size.rows); ++i) {
    text += separator;
    separator = "\r\n";
    text += kClearToEndOfLine;  // before it is written: afterwards the cursor may stand on its last character
    text += CutTo(lines[i], size.columns);
  }
  text += kClearToEnd;
  output_.Write(text);
}

std::string CutTo(const std::string& text, std::size_t columns) {
  std::size_t count = 0;
  std::size_t last = 0;  // where the last character that fits begins
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!StartsCharacter(text[i])) {
      continue;
    }
    if (count == columns) {
      return columns == 0 ? "" : text.substr(0, last) + "…";
    }
    ++count;
    last = i;
  }
  return text;
}

}  // namespace tarn7::tool
