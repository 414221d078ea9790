#pragma once

#include <stdexcept>
#include <string>

namespace tarn7::tool {

/// How a command ended: the exit status of the process.
enum class Status : int {
  kDone = 0,
  kUsage = 1,        ///< wrong command line
  kUnavailable = 2,  ///< the service was not there, or did not answer, in time
  kCallFailed = 3,   ///< the service, or the binding, answered with an error
  kBadValue = 4,     ///< a value that cannot be read, or does not fit the field
};

/// Ends the command with a status and a text for standard error.
class CommandError : public std::runtime_error {
 public:
  CommandError(Status status, const std::string& text) : std::runtime_error(text), status_(status) {}

  Status GetStatus() const noexcept { return status_; }

 private:
  Status status_;
};

/// A value that cannot be read. The text names the place in it.
class ValueError : public CommandError {
 public:
  explicit ValueError(const std::string& text) : CommandError(Status::kBadValue, text) {}
};

}  // namespace tarn7::tool
