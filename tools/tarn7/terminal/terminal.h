#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/tarn7/output.h"

namespace tarn7::tool {

/// Standard output's terminal, drawn on as a whole, on its second screen. Destruction brings back what was on it
/// before; so does a process that ends because of an error that cannot be handled.
class Terminal {
 public:
  struct Size {
    std::size_t columns;
    std::size_t rows;
  };

  /// `output` is a terminal.
  explicit Terminal(Output& output);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// As it is now: the user may change it at any time.
  Size GetSize() const;
  /// Replaces what is shown. What is longer than the terminal is wide, or beyond its last row, is cut off.
  void Show(const std::vector<std::string>& lines);

 private:
  Output& output_;
};

/// The first `columns` characters of a UTF-8 text; one that had to be cut ends in "…".
std::string CutTo(const std::string& text, std::size_t columns);

}  // namespace tarn7::tool
