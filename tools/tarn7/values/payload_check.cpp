#include "tools/tarn7/values/payload_check.h"

#include <algorithm>

namespace tarn7::tool::detail {

namespace {

std::string At(const Place& place, const Extent& extent) {
  return place.ToString() + " at byte " + std::to_string(extent.offset) + ": ";
}

/// What follows the length of the value; nothing where that does not fit, which decoding the value will tell.
Extent ContentOf(const Extent& extent) {
  const std::uint64_t size = extent.SizeWithLength();
  return size == 0 ? extent.First(0) : extent.First(size).From(common::kLengthFieldSize);
}

const CheckedMember* Find(const std::vector<CheckedMember>& members, std::uint16_t dataId) {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [dataId](const CheckedMember& member) { return member.data_id == dataId; });
  return found == members.end() ? nullptr : &*found;
}

/// The member whose tag and length are next.
common::MemberView ReadMemberAt(const Place& place, const Extent& rest, const std::vector<CheckedMember>& members) {
  try {
    return common::ReadMember(rest.data, rest.size);
  } catch (const std::runtime_error& error) {
    const CheckedMember* member = nullptr;
    if (rest.size >= common::kTagSize) {
      member = Find(members, common::DataIdOfTag(common::Deserializer<std::uint16_t>(rest.data, rest.size).getValue()));
    }
    throw PayloadError(At(member == nullptr ? place : Place(place, member->name), rest) + error.what());
  }
}

}  // namespace

std::uint64_t Extent::SizeWithLength() const {
  if (size < common::kLengthFieldSize) {
    return 0;
  }
  const std::uint64_t length = common::Deserializer<std::uint32_t>(data, size).getValue();
  const std::uint64_t needed = common::kLengthFieldSize + length;
  return needed <= size ? needed : 0;
}

void DecodeAt(const Place& place, const Extent& extent, DecodeFunction decode) {
  try {
    decode(extent);
  } catch (const std::runtime_error& error) {
    throw PayloadError(At(place, extent) + error.what());
  }
}

void CheckMembers(const Place& place, const Extent& extent, const std::vector<CheckedMember>& members,
                  PayloadNotes& notes) {
  for (Extent rest = ContentOf(extent); rest.size > 0;) {
    const common::MemberView view = ReadMemberAt(place, rest, members);
    if (const CheckedMember* member = Find(members, view.dataId)) {
      member->check(Place(place, member->name), rest.From(common::kTagSize).First(view.size), notes);
    } else {
      notes.push_back(At(place, rest) + "no member has data id " + std::to_string(view.dataId));
    }
    rest = rest.From(common::kTagSize + view.size);
  }
}

// As the library does, looks at the extents of all elements first.
void CheckElements(const Place& place, const Extent& extent, CheckFunction element, DecodeFunction sequence,
                   PayloadNotes& notes) {
  std::vector<Extent> elements;
  for (Extent rest = ContentOf(extent); rest.size > 0; rest = rest.From(elements.back().size)) {
    const std::uint64_t size = rest.SizeWithLength();
    if (size == 0) {
      try {
        sequence(extent);
      } catch (const std::runtime_error& error) {
        throw PayloadError(At(Place(place, elements.size()), rest) + error.what());
      }
      return;
    }
    elements.push_back(rest.First(size));
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    element(Place(place, i), elements[i], notes);
  }
}

void NoteUnread(const Place& place, const Extent& extent, std::uint64_t read, PayloadNotes& notes) {
  if (extent.size > read) {
    notes.push_back(At(place, extent.From(read)) + std::to_string(extent.size - read) + " bytes are passed over");
  }
}

}  // namespace tarn7::tool::detail
