#include "tools/tarn7/values/payload_check.h"

namespace tarn7::tool::detail {

std::uint64_t Extent::SizeWithLength() const {
  if (size < common::kLengthFieldSize) {
    return 0;
  }
  const std::uint64_t length = common::Deserializer<std::uint32_t>(data, size).getValue();
  const std::uint64_t needed = common::kLengthFieldSize + length;
  return needed <= size ? needed : 0;
}

std::string At(const Place& place, const Extent& extent) {
  return place.ToString() + " at byte " + std::to_string(extent.offset);
}

void NoteRest(const Extent& payload, PayloadNotes& notes) {
  const Extent rest = payload.From(payload.SizeWithLength());
  if (rest.size > 0) {
    notes.push_back("the value ends at byte " + std::to_string(rest.offset) + ": " + std::to_string(rest.size) +
                    " more bytes are passed over");
  }
}

}  // namespace tarn7::tool::detail
