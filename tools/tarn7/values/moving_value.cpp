#include "tools/tarn7/values/moving_value.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

constexpr int kGreatest = 100;  // fits every number
constexpr std::string_view kText = "text";

}  // namespace

int ValueSource::Drift(int number, int step, int max) {
  const int moved = number + Random(-step, step);
  return std::clamp(moved == number ? number + 1 : moved, 0, max);
}

Payload ValueSource::First(const ValueType& type) {
  Payload value;
  Append(type, value);
  return value;
}

void ValueSource::Append(const ValueType& type, Payload& value) {
  if (type.IsScalar()) {
    AppendNumber(value, 0, type.size);
    unsigned char* const data = value.data() + value.size() - type.size;
    if (type.kind == Kind::kFloat) {
      StoreFloat(Random(0, 2 * kGreatest) / 2.0, data, type.size);
    } else {
      StoreNumber(static_cast<std::uint64_t>(Random(0, type.kind == Kind::kBool ? 1 : kGreatest)), data, type.size);
    }
    return;
  }
  AppendWithLength(value, [&] {
    if (type.kind == Kind::kString) {
      value.insert(value.end(), kText.begin(), kText.end());
    } else if (type.kind == Kind::kBytes) {
      constexpr std::size_t kUsualSize = 4;
      std::generate_n(std::back_inserter(value), type.size == 0 ? kUsualSize : type.size,
                      [this] { return static_cast<unsigned char>(Random(0, 0xFF)); });
    } else if (type.kind == Kind::kSequence) {
      Append(*type.element, value);
      Append(*type.element, value);
    } else {
      for (const Member& member : type.record->members) {
        AppendNumber(value, TagOf(member), common::kTagSize);
        Append(*member.type, value);
      }
    }
  });
}

void ValueSource::Move(const ValueType& type, Payload& value) { MoveAt(type, Whole(value), value); }

void ValueSource::MoveAt(const ValueType& type, const Extent& part, Payload& value) {
  if (type.IsScalar()) {
    MoveScalar(type, value.data() + part.offset);
  } else if (type.kind == Kind::kBytes) {
    std::generate_n(value.begin() + static_cast<std::ptrdiff_t>(part.Content().offset), part.Content().size,
                    [this] { return static_cast<unsigned char>(Random(0, 0xFF)); });
  } else if (type.kind == Kind::kSequence) {
    ForEachElement(type, part, [&](const Extent& element) { MoveAt(*type.element, element, value); });
  } else if (type.kind == Kind::kRecord) {
    const std::vector<Extent> members = MembersOf(*type.record, part);
    for (std::size_t i = 0; i < members.size(); ++i) {
      MoveAt(*type.record->members[i].type, members[i], value);
    }
  }
}

void ValueSource::MoveScalar(const ValueType& type, unsigned char* data) {
  if (type.kind == Kind::kFloat) {
    const int halves = static_cast<int>(2 * LoadFloat(data, type.size));
    StoreFloat(Drift(halves, 2, 2 * kGreatest) / 2.0, data, type.size);
  } else if (type.kind == Kind::kBool) {
    *data = static_cast<unsigned char>((*data != 0) != (Random(0, 7) == 0) ? 1 : 0);
  } else {
    const int number = Drift(static_cast<int>(LoadNumber(data, type.size)), 2, kGreatest);
    StoreNumber(static_cast<std::uint64_t>(number), data, type.size);
  }
}

}  // namespace tarn7::tool
