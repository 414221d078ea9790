#include "tools/tarn7/line_reader.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarn7::tool {

LineReader::LineReader(int descriptor, Read read) : descriptor_(descriptor), read_(std::move(read)) {
  if (::pipe2(end_, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "no pipe can be made");
  }
  thread_ = std::thread(&LineReader::Run, this);
}

LineReader::~LineReader() {
  ::close(end_[1]);
  thread_.join();
  ::close(end_[0]);
}

bool LineReader::WaitReadable() const {
  pollfd waiting[] = {{descriptor_, POLLIN, 0}, {end_[0], POLLIN, 0}};
  while (::poll(waiting, 2, -1) < 0 && errno == EINTR) {
  }
  return waiting[1].revents == 0;
}

void LineReader::Run() {
  std::string text;
  char chunk[4096];
  while (WaitReadable()) {
    const ssize_t count = ::read(descriptor_, chunk, sizeof(chunk));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      if (!text.empty()) {
        Deliver(text);  // the last line need not have an end
      }
      return;
    }
    // Only what is new can hold a line end.
    std::size_t end = text.size();
    text.append(chunk, static_cast<std::size_t>(count));
    std::size_t begin = 0;
    while ((end = text.find('\n', end)) != std::string::npos) {
      Deliver(std::string_view(text).substr(begin, end - begin));
      begin = ++end;
    }
    text.erase(0, begin);
  }
}

void LineReader::Deliver(std::string_view line) { read_(line, ++number_); }

}  // namespace tarn7::tool
