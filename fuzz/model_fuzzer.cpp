// The tool's reader of models: it refuses a text in one way, and what it accepts has values.
#include <string_view>

#include "fuzz/check.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/model/model_reader.h"
#include "tools/tarn7/values/moving_value.h"
#include "tools/tarn7/values/payload_check.h"

namespace {

using namespace tarn7::tool;

void Read(std::string_view text) {
  try {
    const Interface interface = ReadModel(text);
    ValueSource source;
    for (const Field& field : interface.fields) {
      if (field.type->weight < 10'000) {
        fuzz::Require(CheckPayload(*field.type, source.First(*field.type)).empty(), "a made-up value is one");
      }
    }
  } catch (const ValueError&) {  // the one way to refuse a text
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read({reinterpret_cast<const char*>(data), size});
  return 0;
}
