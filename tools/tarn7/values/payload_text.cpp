#include "tools/tarn7/values/payload_text.h"

#include <charconv>
#include <cmath>

#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/payload_check.h"

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

/// The number whose text has the fewest digits that identify the value in its own precision: the float 0.1 is 0.1, and
/// not 0.10000000149011612.
void AppendFloat(std::string& text, const unsigned char* data, std::size_t size) {
  const double value = LoadFloat(data, size);
  if (!std::isfinite(value)) {
    text += std::isnan(value) ? R"("NaN")" : value > 0 ? R"("Infinity")" : R"("-Infinity")";
  } else if (size == sizeof(value)) {
    AppendNumber(text, value);
  } else {
    char digits[32];
    const auto end =
        std::to_chars(digits, digits + sizeof(digits), static_cast<float>(value), std::chars_format::scientific).ptr;
    double shortest = 0;
    std::from_chars(digits, end, shortest);
    AppendNumber(text, shortest);
  }
}

void AppendInteger(std::string& text, const ValueType& type, const unsigned char* data) {
  char digits[24];
  const bool isNegative = type.is_signed && (*data & 0x80U) != 0;
  const std::uint64_t number = LoadNumber(data, type.size, isNegative ? ~std::uint64_t{0} : 0);
  const auto end = isNegative ? std::to_chars(digits, digits + sizeof(digits), static_cast<std::int64_t>(number))
                              : std::to_chars(digits, digits + sizeof(digits), number);
  text.append(digits, end.ptr);
}

void AppendValue(std::string& text, const ValueType& type, const Extent& value);

void AppendRecord(std::string& text, const RecordType& record, const Extent& value) {
  const std::vector<Extent> members = MembersOf(record, value);
  text += '{';
  const char* separator = "\"";
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (members[i].data != nullptr) {
      text += separator + record.members[i].name + "\":";
      AppendValue(text, *record.members[i].type, members[i]);
      separator = ",\"";
    }
  }
  text += '}';
}

void AppendValue(std::string& text, const ValueType& type, const Extent& value) {
  switch (type.kind) {
    case Kind::kBool:
      text += *value.data != 0 ? "true" : "false";
      break;
    case Kind::kInteger:
      AppendInteger(text, type, value.data);
      break;
    case Kind::kFloat:
      AppendFloat(text, value.data, type.size);
      break;
    case Kind::kString: {
      const Extent content = value.Content();
      AppendString(text, {reinterpret_cast<const char*>(content.data), static_cast<std::size_t>(content.size)});
      break;
    }
    case Kind::kBytes: {
      const Extent content = value.Content();
      text += '"';
      AppendHex(text, content.data, content.size);
      text += '"';
      break;
    }
    case Kind::kSequence: {
      text += '[';
      const char* separator = "";
      ForEachElement(type, value, [&](const Extent& element) {
        text += separator;
        AppendValue(text, *type.element, element);
        separator = ",";
      });
      text += ']';
      break;
    }
    case Kind::kRecord:
      AppendRecord(text, *type.record, value);
      break;
  }
}

/// The elements of all sequences in a value, itself included.
std::size_t CountElements(const ValueType& type, const Extent& value) {
  std::size_t count = 0;
  if (type.kind == Kind::kSequence) {
    ForEachElement(type, value, [&](const Extent& element) { count += 1 + CountElements(*type.element, element); });
  } else if (type.kind == Kind::kRecord) {
    const std::vector<Extent> members = MembersOf(*type.record, value);
    for (std::size_t i = 0; i < members.size(); ++i) {
      count += members[i].data == nullptr ? 0 : CountElements(*type.record->members[i].type, members[i]);
    }
  }
  return count;
}

}  // namespace

std::string PayloadText(const ValueType& type, const Payload& payload) {
  CheckPayload(type, payload);
  std::string text;
  AppendValue(text, type, Whole(payload));
  return text;
}

std::string Outline(const ValueType& type, const Payload& payload) {
  CheckPayload(type, payload);
  const RecordType& record = *type.element->record;
  struct Own {
    bool is_there = false;
    std::size_t count = 0;
  };
  std::vector<Own> own(record.members.size());
  std::size_t records = 0;
  ForEachElement(type, Whole(payload), [&](const Extent& element) {
    ++records;
    const std::vector<Extent> members = MembersOf(record, element);
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (members[i].data != nullptr && record.members[i].type->kind == Kind::kSequence) {
        own[i].is_there = true;
        ForEachElement(*record.members[i].type, members[i], [&](const Extent&) { ++own[i].count; });
      }
    }
  });
  std::string text = std::to_string(records) + (records == 1 ? " record" : " records");
  for (std::size_t i = 0; i < own.size(); ++i) {
    if (own[i].is_there) {
      text += ", " + record.members[i].name + ": " + std::to_string(own[i].count);
    }
  }
  const std::size_t elements = CountElements(type, Whole(payload)) - records;
  return elements == 0 ? text : text + ", " + std::to_string(elements) + (elements == 1 ? " element" : " elements");
}

}  // namespace tarn7::tool
