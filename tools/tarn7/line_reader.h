#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace tarn7::tool {

/// Reads lines from a descriptor, on a thread of its own, until there are no more or until this is destroyed. What is
/// read next waits until the line before was dealt with.
class LineReader {
 public:
  /// Called on that thread with each line, without its end, and its number, counted from 1. Must not throw.
  using Read = std::function<void(std::string_view line, std::size_t number)>;

  /// Does not close the descriptor. Throws std::system_error when there is no more to be had from the system.
  LineReader(int descriptor, Read read);
  /// Waits for the call that is running.
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

 private:
  void Run();
  /// Waits until there is something to read. False when it is time to end.
  bool WaitReadable() const;
  void Deliver(std::string_view line);

  const int descriptor_;
  const Read read_;
  std::size_t number_ = 0;
  int end_[2] = {};  // a pipe: closing its writing end ends the thread
  std::thread thread_;
};

}  // namespace tarn7::tool
