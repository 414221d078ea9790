#include "tools/tarn7/output.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <unistd.h>

namespace tarn7::tool {

Output::Output() : descriptor_(::dup(STDOUT_FILENO)) {
  std::signal(SIGPIPE, SIG_IGN);  // a write says so too
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

Output::~Output() { ::close(descriptor_); }

void Output::WriteLine(std::string text) {
  text += '\n';
  Write(text);
}

bool Output::IsTerminal() const { return ::isatty(descriptor_) == 1; }

void Output::Write(std::string_view text) {
  for (std::size_t written = 0; written < text.size();) {
    const ssize_t count = ::write(descriptor_, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EPIPE) {
      throw ReaderGone();
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "standard output cannot be written");
    }
  }
}

}  // namespace tarn7::tool
