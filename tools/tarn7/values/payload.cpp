#include "tools/tarn7/values/payload.h"

#include "serialization/member_view.h"

namespace tarn7::tool {

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
