#pragma once

#include <string>
#include <string_view>

namespace tarn7::tool {

/// Thrown when whoever reads standard output has left, as `head` does: no error, but nothing is left to do.
struct ReaderGone {};

/// Standard output, kept for data: whatever else writes to it (a SOME/IP stack may log there) goes to standard error
/// from here on. One per process.
class Output {
 public:
  Output();
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Writes the text and a line end, at once. Throws ReaderGone, or std::system_error when it cannot be written.
  void WriteLine(std::string text);
  /// The same without a line end.
  void Write(std::string_view text);

  bool IsTerminal() const;
  int Descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace tarn7::tool
