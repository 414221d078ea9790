#include "tools/tarn7/recording/recording.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include <nlohmann/json.hpp>

#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/json_checks.h"
#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

namespace {

/// The members of a line, in its order.
constexpr const char* kTime = "time";
constexpr const char* kInterface = "interface";
constexpr const char* kField = "field";
constexpr const char* kValue = "value";

double TimeOf(const Json& line) {
  const Place root{};
  const Place place(root, kTime);
  const Json& json = RequiredMember(line, kTime, root);
  const double time = NumberFromJson(json, place);
  if (!(time >= 0 && time < 1e12)) {
    place.Fail(ToText(json) + " is no number of seconds since 1970");
  }
  return time;
}

std::string NameOf(const Json& line, const char* member) {
  return StringFromJson(RequiredMember(line, member, Place()), Place(Place(), member));
}

void ReadLine(const Json& line, const std::vector<FieldAddress>& fields, std::vector<RecordedSample>& samples) {
  if (!line.is_object()) {
    throw ValueError("expected an object, found " + Summary(line));
  }
  const double time = TimeOf(line);
  const std::string interface = NameOf(line, kInterface);
  const auto known = std::find_if(fields.begin(), fields.end(), [&interface](const FieldAddress& address) {
    return address.interface->name == interface;
  });
  if (known == fields.end()) {
    return;
  }
  const Field& field = FindField(*known->interface, NameOf(line, kField));
  const Json& value = RequiredMember(line, kValue, Place());
  try {
    samples.push_back({time, &field, Encode(*field.type, value)});
  } catch (const ValueError& error) {
    throw ValueError(field.name + ": " + error.what());
  }
}

}  // namespace

std::string RecordingLine(const FieldAddress& address, const Payload& value,
                          std::chrono::system_clock::time_point time) {
  const std::chrono::duration<double> seconds =
      std::chrono::time_point_cast<std::chrono::microseconds>(time).time_since_epoch();
  std::string line =
      ToText({{kTime, seconds.count()}, {kInterface, address.interface->name}, {kField, address.field->name}});
  line.pop_back();  // the closing brace
  return line + ",\"" + kValue + "\":" + PayloadText(*address.field->type, value) + '}';
}

std::vector<RecordedSample> ReadRecording(const std::string& path, const std::vector<FieldAddress>& fields) {
  const bool isFile = path != "-";
  const std::string source = isFile ? path : "standard input";
  std::ifstream file;
  if (isFile) {
    file.open(path);
    if (!file) {
      throw ValueError(path + " cannot be read: " + std::strerror(errno));
    }
  }
  std::istream& input = isFile ? file : std::cin;
  std::vector<RecordedSample> samples;
  std::string line;
  for (std::size_t number = 1; std::getline(input, line); ++number) {
    try {
      ReadLine(ParseJson(line, "no JSON"), fields, samples);
    } catch (const CommandError& error) {
      throw ValueError(source + ": line " + std::to_string(number) + ": " + error.what());
    }
  }
  if (input.bad()) {
    throw ValueError(source + " cannot be read: " + std::strerror(errno));
  }
  if (samples.empty()) {
    throw ValueError(source + ": no line is of " + fields.front().interface->name);
  }
  return samples;
}

}  // namespace tarn7::tool
