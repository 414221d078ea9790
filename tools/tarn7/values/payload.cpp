#include "tools/tarn7/values/payload.h"

#include <cstring>

#include "serialization/member_view.h"

namespace tarn7::tool {

double LoadFloat(const unsigned char* data, std::size_t size) {
  const std::uint64_t bits = LoadNumber(data, size);
  double number = 0;
  if (size == sizeof(number)) {
    std::memcpy(&number, &bits, sizeof(number));
    return number;
  }
  const auto narrowBits = static_cast<std::uint32_t>(bits);
  float narrow = 0;
  std::memcpy(&narrow, &narrowBits, sizeof(narrow));
  return narrow;
}

void StoreFloat(double number, unsigned char* data, std::size_t size) {
  if (size == sizeof(number)) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    StoreNumber(bits, data, size);
    return;
  }
  const auto narrow = static_cast<float>(number);
  std::uint32_t bits = 0;
  std::memcpy(&bits, &narrow, sizeof(bits));
  StoreNumber(bits, data, size);
}

std::uint16_t TagOf(const Member& member) {
  using common::WireType;
  WireType wire = WireType::kLength32;
  if (member.type->IsScalar()) {
    const std::size_t size = member.type->size;
    wire = size == 1   ? WireType::kOneByte
           : size == 2 ? WireType::kTwoBytes
           : size == 4 ? WireType::kFourBytes
                       : WireType::kEightBytes;
  }
  return common::MakeTag(wire, member.data_id);
}

std::vector<Extent> MembersOf(const RecordType& record, const Extent& value) {
  std::vector<Extent> members(record.members.size());
  std::size_t next = 0;  // most records come in the order of their type
  for (Extent rest = value.Content(); rest.size > 0;) {
    const common::MemberView view = common::ReadMember(rest.data, rest.size);
    for (std::size_t tried = 0; tried < members.size(); ++tried, ++next) {
      next = next < members.size() ? next : 0;
      if (record.members[next].data_id == view.dataId) {
        members[next] = rest.From(common::kTagSize).First(view.size);
        break;
      }
    }
    rest = rest.From(common::kTagSize + view.size);
  }
  return members;
}

}  // namespace tarn7::tool
