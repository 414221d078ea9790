#pragma once

#include <cstdio>
#include <cstring>
#include <signal.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace support {

/// A program in a process of its own, with pipes to its standard input and output. Ended, and waited for, when
/// destroyed.
class ChildProcess {
 public:
  explicit ChildProcess(std::string program, std::vector<std::string> arguments = {}) {
    std::vector<char*> words{program.data()};
    for (std::string& argument : arguments) {
      words.push_back(argument.data());
    }
    words.push_back(nullptr);
    int in[2];
    int out[2];
    if (pipe(in) != 0 || pipe(out) != 0) {
      throw std::runtime_error("no pipe");
    }
    id_ = fork();
    if (id_ == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      for (const int end : {in[0], in[1], out[0], out[1]}) {
        close(end);
      }
      execv(program.c_str(), words.data());
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
    input_ = fdopen(in[1], "w");
    output_ = fdopen(out[0], "r");
  }
  ~ChildProcess() { End(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Writes a line and waits for the line that says that it was done.
  void Tell(const std::string& line) {
    std::fputs((line + "\n").c_str(), input_);
    std::fflush(input_);
    char answer[16] = {};
    if (std::fgets(answer, sizeof(answer), output_) == nullptr || std::strcmp(answer, "done\n") != 0) {
      throw std::runtime_error("the process did not do as it was told: " + line);
    }
  }

  /// Keeps all its threads from running, until Continue().
  void Suspend() {
    kill(id_, SIGSTOP);
    waitpid(id_, nullptr, WUNTRACED);  // until it has stopped
  }
  void Continue() { kill(id_, SIGCONT); }
  /// Ends the process without giving it a chance to say good-bye.
  void Kill() {
    kill(id_, SIGKILL);
    End();
  }
  /// Closes its input, which lets it end by itself.
  void End() {
    if (id_ > 0) {
      std::fclose(input_);
      std::fclose(output_);
      waitpid(id_, nullptr, 0);
      id_ = 0;
    }
  }

 private:
  pid_t id_ = 0;
  std::FILE* input_ = nullptr;
  std::FILE* output_ = nullptr;
};

}  // namespace support
