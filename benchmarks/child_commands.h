#pragma once

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace benchmarks {

/// The inside of a support::ChildProcess. Must be made before the stack starts, which may log to standard output: that
/// goes to standard error from now on, and the answers have a stream of their own.
class ChildCommands {
 public:
  ChildCommands() : answers_(fdopen(dup(STDOUT_FILENO), "w")) { dup2(STDERR_FILENO, STDOUT_FILENO); }
  ~ChildCommands() { std::fclose(answers_); }
  ChildCommands(const ChildCommands&) = delete;
  ChildCommands& operator=(const ChildCommands&) = delete;

  /// Does what each line of standard input says, and says when it is done, until the input ends.
  template <typename Action>
  void Obey(Action action) {
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream command(line);
      action(command);
      std::fputs("done\n", answers_);
      std::fflush(answers_);
    }
  }

 private:
  std::FILE* const answers_;
};

}  // namespace benchmarks
