#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

/// What the command line calls for.
struct Request {
  std::vector<std::string> model_files;
  std::function<void(const Context&)> command;
};

/// The commands and their options. Lives longer than the requests that are read with it.
class CommandLine {
 public:
  CommandLine();
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Reads the command line; or says what is wrong with it, or prints the help that it asks for, and returns the exit
  /// status. Once.
  std::variant<Request, Status> Read(int argc, const char* const* argv);

 private:
  struct Syntax;

  std::unique_ptr<Syntax> syntax_;
};

}  // namespace tarn7::tool
