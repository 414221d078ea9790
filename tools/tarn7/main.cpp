#include <exception>
#include <iostream>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "tools/tarn7/error.h"
#include "tools/tarn7/front/command_line.h"
#include "tools/tarn7/values/printable.h"

namespace {

using namespace tarn7::tool;

int Fail(Status status, const std::string& text) {
  std::cerr << "tarn7: " << Printable(text) << std::endl;
  return static_cast<int>(status);
}

int Run(const Request& request) {
  try {
    Output output;
    InterfaceTable interfaces;
    for (const std::string& file : request.model_files) {
      interfaces.AddFile(file);
    }
    request.command({output, interfaces});
    return static_cast<int>(Status::kDone);
  } catch (const CommandError& error) {
    return Fail(error.GetStatus(), error.what());
  } catch (const Interrupted& interrupted) {
    constexpr int kEndedBySignal = 128;  // as a shell reports it
    return kEndedBySignal + interrupted.signal;
  } catch (const ReaderGone&) {
    return static_cast<int>(Status::kDone);
  } catch (const std::exception& error) {
    return Fail(Status::kCallFailed, error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
#ifdef __GLIBC__
  // Large values go back to the system when they are gone. By default the heap keeps more of them the more there were.
  constexpr int kLargeValue = 128 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, kLargeValue);
#endif
  CommandLine line;
  const auto read = line.Read(argc, argv);
  const auto* const status = std::get_if<Status>(&read);
  return status != nullptr ? static_cast<int>(*status) : Run(std::get<Request>(read));
}
