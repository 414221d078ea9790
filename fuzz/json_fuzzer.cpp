// The tool's reader of values: what JSON text says is written as bytes, read, and shown as JSON text that says the
// same. The first byte of an input chooses the field.
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/check.h"
#include "fuzz/fields.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/values/from_json.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/to_json.h"

namespace {

namespace common = ara::com::internal::vsomeip::common;
using common::ByteVector;
using tarn7::tool::ParseJson;

template <typename Value>
ByteVector Encode(std::string_view text) {
  ByteVector bytes;
  const auto value = tarn7::tool::FromJson<Value>(ParseJson(text, "input"));
  common::SequenceContainerSerializer<Value>(value).pushbackTo(bytes);
  return bytes;
}

template <typename Value>
void RoundTrip(std::string_view text) {
  ByteVector bytes;
  try {
    bytes = Encode<Value>(text);
  } catch (const tarn7::tool::ValueError&) {
    return;  // the one way to refuse a text
  }
  const auto value = common::DeserializeFieldValue<Value>(bytes.data(), bytes.size());
  fuzz::Require(Encode<Value>(tarn7::tool::ToText(tarn7::tool::ToJson(value))) == bytes,
                "what is shown reads as the same value");
}

using RoundTripFunction = void (*)(std::string_view);

const std::vector<RoundTripFunction>& RoundTrips() {
  static const std::vector<RoundTripFunction> functions = [] {
    std::vector<RoundTripFunction> all;
    fuzz::ForEachField(
        [&all](const std::string&, auto field) { all.push_back(&RoundTrip<typename decltype(field)::ValueType>); });
    return all;
  }();
  return functions;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) {
    RoundTrips()[data[0] % RoundTrips().size()]({reinterpret_cast<const char*>(data) + 1, size - 1});
  }
  return 0;
}
