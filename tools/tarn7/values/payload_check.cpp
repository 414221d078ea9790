#include "tools/tarn7/values/payload_check.h"

#include <algorithm>

#include "serialization/member_view.h"
#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/place.h"

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

// The library's texts.
constexpr const char* kValueTooShort = "Deserialization of ara::core::Vector<T> failed, insufficient data.";
constexpr const char* kSequenceTooShort = "Deserialization of sequence container failed, insufficient data.";
constexpr const char* kNoSize = "Deserialization of structure failed, unable to read size.";
constexpr const char* kRecordTooLong = "Deserialization of structure failed, declared size excess data length.";
constexpr const char* kMemberTooShort = "Insufficient arguments from remote end";

std::string At(const Place& place, const Extent& extent) {
  return place.ToString() + " at byte " + std::to_string(extent.offset) + ": ";
}

[[noreturn]] void Fail(const Place& place, const Extent& extent, const std::string& text) {
  throw PayloadError(At(place, extent) + text);
}

const Member* FindMember(const RecordType& record, std::uint16_t dataId) {
  const auto found = std::find_if(record.members.begin(), record.members.end(),
                                  [dataId](const Member& member) { return member.data_id == dataId; });
  return found == record.members.end() ? nullptr : &*found;
}

class Checker {
 public:
  /// The extent is what a decoder of the type is given: it may hold more than the value.
  void Check(const ValueType& type, const Place& place, const Extent& extent) {
    switch (type.kind) {
      case Kind::kBool:
      case Kind::kInteger:
      case Kind::kFloat:
        if (extent.size < type.size) {
          Fail(place, extent, kMemberTooShort);
        }
        NoteUnread(place, extent.From(type.size));
        return;
      case Kind::kRecord:
        if (extent.size < common::kLengthFieldSize) {
          Fail(place, extent, kNoSize);
        }
        CheckLength(place, extent, kRecordTooLong);
        CheckMembers(*type.record, place, extent.Content());
        break;
      case Kind::kString:
      case Kind::kBytes:
        CheckLength(place, extent, kSequenceTooShort);
        if (type.size != 0 && extent.Length() != type.size) {
          Fail(place, extent, kSequenceTooShort);
        }
        break;
      case Kind::kSequence:
        CheckLength(place, extent, kSequenceTooShort);
        CheckElements(*type.element, place, extent);
        break;
    }
    NoteUnread(place, extent.From(common::kLengthFieldSize + extent.Length()));
  }

  PayloadNotes TakeNotes() { return std::move(notes_); }

 private:
  static void CheckLength(const Place& place, const Extent& extent, const char* text) {
    std::uint64_t length = 0;
    try {
      length = extent.Length();
    } catch (const std::runtime_error& error) {
      Fail(place, extent, error.what());
    }
    if (length > extent.size - common::kLengthFieldSize) {
      Fail(place, extent, text);
    }
  }

  /// The member whose tag and length are next.
  static common::MemberView ReadMember(const RecordType& record, const Place& place, const Extent& rest) {
    try {
      return common::ReadMember(rest.data, rest.size);
    } catch (const std::runtime_error& error) {
      const Member* member = nullptr;
      if (rest.size >= common::kTagSize) {
        const auto tag = static_cast<std::uint16_t>(LoadNumber(rest.data, common::kTagSize));
        member = FindMember(record, common::DataIdOfTag(tag));
      }
      Fail(member == nullptr ? place : Place(place, member->name), rest, error.what());
    }
  }

  void CheckMembers(const RecordType& record, const Place& place, Extent rest) {
    while (rest.size > 0) {
      const common::MemberView view = ReadMember(record, place, rest);
      if (const Member* member = FindMember(record, view.dataId)) {
        Check(*member->type, Place(place, member->name), rest.From(common::kTagSize).First(view.size));
      } else {
        notes_.push_back(At(place, rest) + "no member has data id " + std::to_string(view.dataId));
      }
      rest = rest.From(common::kTagSize + view.size);
    }
  }

  void CheckElements(const ValueType& element, const Place& place, const Extent& extent) {
    if (element.IsScalar()) {
      if (extent.Length() % element.size != 0) {
        Fail(place, extent, kSequenceTooShort);
      }
      return;
    }
    // As the library does, checks each element against all bytes there are, and then its extent against the sequence.
    Extent handed = extent.From(common::kLengthFieldSize);
    Extent rest = extent.Content();
    for (std::size_t i = 0; rest.size > 0; ++i) {
      const Place next(place, i);
      const bool isWhole =
          handed.size >= common::kLengthFieldSize && handed.Length() <= handed.size - common::kLengthFieldSize;
      Check(element, next, isWhole ? handed.First(common::kLengthFieldSize + handed.Length()) : handed);
      const std::uint64_t size = common::kLengthFieldSize + handed.Length();
      if (size > rest.size) {
        Fail(next, rest, kSequenceTooShort);
      }
      handed = handed.From(size);
      rest = rest.From(size);
    }
  }

  void NoteUnread(const Place& place, const Extent& unread) {
    if (unread.size > 0) {
      notes_.push_back(At(place, unread) + Counted(unread.size, "byte") + (unread.size == 1 ? " is" : " are") +
                       " passed over");
    }
  }

  PayloadNotes notes_;
};

}  // namespace

PayloadNotes CheckPayload(const ValueType& type, const Payload& payload) {
  const Extent extent = Whole(payload);
  const Place whole;
  if (extent.size < common::kLengthFieldSize || extent.Length() > extent.size - common::kLengthFieldSize) {
    Fail(whole, extent, kValueTooShort);
  }
  Checker checker;
  checker.Check(type, whole, extent);
  return checker.TakeNotes();
}

}  // namespace tarn7::tool
