#include "tools/tarn7/values/moving_value.h"

#include <algorithm>
#include <vector>

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

constexpr int kGreatest = 100;

int GreatestOf(const ValueType& type) { return static_cast<int>(std::min<std::uint64_t>(type.max, kGreatest)); }

}  // namespace

int ValueSource::Drift(int number, int step, int max) {
  const int moved = number + Random(-step, step);
  return std::clamp(moved == number ? number + 1 : moved, 0, max);
}

Json ValueSource::First(const ValueType& type) {
  switch (type.kind) {
    case Kind::kBool:
      return Random(0, 1) == 1;
    case Kind::kInteger:
      return static_cast<unsigned>(Random(0, GreatestOf(type)));
    case Kind::kFloat:
      return Random(0, 2 * kGreatest) / 2.0;
    case Kind::kString:
      return "text";
    case Kind::kBytes: {
      std::vector<unsigned char> bytes(type.size == 0 ? 4 : type.size);
      std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<unsigned char>(Random(0, 0xFF)); });
      return ToHex(bytes.data(), bytes.size());
    }
    case Kind::kSequence:
      return Json::array({First(type.element.front()), First(type.element.front())});
    case Kind::kRecord:
      break;
  }
  Json record = Json::object();
  for (const Member& member : type.members) {
    record[member.name] = First(member.type);
  }
  return record;
}

void ValueSource::Move(Json& value, const ValueType& type) {
  switch (type.kind) {
    case Kind::kBool:
      value = value.get<bool>() != (Random(0, 7) == 0);
      break;
    case Kind::kInteger:
      value = static_cast<unsigned>(Drift(value.get<int>(), 2, GreatestOf(type)));
      break;
    case Kind::kFloat:
      value = Drift(static_cast<int>(2 * value.get<double>()), 2, 2 * kGreatest) / 2.0;
      break;
    case Kind::kString:
      break;
    case Kind::kBytes:
      value = First(type);
      break;
    case Kind::kSequence:
      for (Json& element : value) {
        Move(element, type.element.front());
      }
      break;
    case Kind::kRecord:
      for (const Member& member : type.members) {
        Move(value[member.name], member.type);
      }
      break;
  }
}

}  // namespace tarn7::tool
