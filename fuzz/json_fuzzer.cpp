// The tool's reader of values: what JSON text says is written as bytes that the library reads and writes the same, and
// shown as JSON text that says the same. The first byte of an input chooses the field.
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "fuzz/check.h"
#include "fuzz/fields.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/payload_text.h"

namespace {

using namespace tarn7::tool;

template <typename Value>
Payload Reencode(const Payload& payload) {
  Payload bytes;
  const auto value = common::DeserializeFieldValue<Value>(payload.data(), payload.size());
  common::SequenceContainerSerializer<Value>(value).pushbackTo(bytes);
  return bytes;
}

struct Subject {
  const ValueType* type;
  Payload (*reencode)(const Payload&);
};

const std::vector<Subject>& Subjects() {
  static const InterfaceTable interfaces;
  static const std::vector<Subject> subjects = [] {
    std::vector<Subject> all;
    fuzz::ForEachField([&all](const std::string& address, auto field) {
      all.push_back({interfaces.FindAddress(address).field->type, &Reencode<typename decltype(field)::ValueType>});
    });
    return all;
  }();
  return subjects;
}

void RoundTrip(const Subject& subject, std::string_view text) {
  Payload bytes;
  try {
    bytes = Encode(*subject.type, ParseJson(text, "input"));
  } catch (const ValueError&) {
    return;  // the one way to refuse a text
  }
  fuzz::Require(subject.reencode(bytes) == bytes, "the library reads and writes what the tool has written");
  fuzz::Require(Encode(*subject.type, ParseJson(PayloadText(*subject.type, bytes), "text")) == bytes,
                "what is shown reads as the same value");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) {
    RoundTrip(Subjects()[data[0] % Subjects().size()], {reinterpret_cast<const char*>(data) + 1, size - 1});
  }
  return 0;
}
