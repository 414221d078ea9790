#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace tarn7::tool {

struct RecordType;

/// The type of a value: what the codec, and everything else that deals with values, goes by. Immutable; what it refers
/// to belongs to the interface that describes it. No type holds itself.
struct ValueType {
  enum class Kind : std::uint8_t { kBool, kInteger, kFloat, kString, kBytes, kSequence, kRecord };

  bool IsScalar() const noexcept { return kind == Kind::kBool || kind == Kind::kInteger || kind == Kind::kFloat; }

  Kind kind;
  std::string name;                    ///< as users see it: "uint32", "sequence of record"
  std::string cpp_name;                ///< in the library's headers: "std::uint32_t", "SequenceBox<DT_link>"
  std::size_t size = 0;                ///< of a scalar: its bytes; of bytes: how many, 0 for any number
  bool is_signed = false;              ///< of an integer
  const ValueType* element = nullptr;  ///< of a sequence, and of bytes
  const RecordType* record = nullptr;  ///< of a record
  std::size_t weight = 1;              ///< values in it, nested ones too, where each sequence has two elements
};

/// What a member or a record is believed to be, and what of it this library has chosen.
struct Remarks {
  std::string taken_for;
  std::string unit;
  std::string choice;
};

struct Member {
  std::uint16_t data_id;
  std::string name;
  const ValueType* type;
  Remarks remarks;
};

/// The members of a record, all of them optional, in the order in which they are written.
struct RecordType {
  std::vector<Member> members;
  Remarks remarks;
};

/// Types that refer to one another.
struct TypeStore {
  std::deque<ValueType> types;
  std::deque<RecordType> records;
};

/// The record that a type is, or that its elements are; null for a type without any.
inline const ValueType* RecordIn(const ValueType& type) {
  const ValueType* inner = &type;
  while (inner->kind == ValueType::Kind::kSequence) {
    inner = inner->element;
  }
  return inner->kind == ValueType::Kind::kRecord ? inner : nullptr;
}

}  // namespace tarn7::tool
