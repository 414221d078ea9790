#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tools/tarn7/model/interface.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// A value that a field had at a time.
struct RecordedSample {
  double time;  ///< seconds since 1970
  const Field* field;
  Payload payload;
};

/// A line of a recording, and of what `watch` writes. Throws PayloadError for what is no value of the field.
std::string RecordingLine(const FieldAddress& address, const Payload& value,
                          std::chrono::system_clock::time_point time);

/// Reads the lines that are of the interfaces of `fields`, from a file or, where `path` is "-", from standard input up
/// to its end. Throws ValueError, which names the line, for what is no line of a recording.
std::vector<RecordedSample> ReadRecording(const std::string& path, const std::vector<FieldAddress>& fields);

}  // namespace tarn7::tool
