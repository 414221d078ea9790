#include "tools/tarn7/model/type_maker.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include <nlohmann/json.hpp>

#include "tools/tarn7/values/counted.h"
#include "tools/tarn7/values/json_checks.h"
#include "tools/tarn7/values/nearest.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

namespace {

using Kind = ValueType::Kind;

constexpr std::size_t kLongestName = 1000;
constexpr std::size_t kDeepest = 64;
constexpr std::size_t kMostTypes = 10'000;
constexpr std::size_t kMostParts = 1'000'000;
constexpr std::size_t kMostBytes = 65'535;
constexpr const char* kSequence = "sequence";
constexpr const char* kBytes = "bytes";

const std::map<std::string, ValueType>& Simple() {
  static const std::map<std::string, ValueType> types = [] {
    std::map<std::string, ValueType> all;
    for (const std::size_t size : {1U, 2U, 4U, 8U}) {
      for (const bool isSigned : {false, true}) {
        const std::string name = (isSigned ? "int" : "uint") + std::to_string(8 * size);
        all[name] = {Kind::kInteger, name, "std::" + name + "_t", size, isSigned};
      }
    }
    all["bool"] = {Kind::kBool, "bool", "bool", 1};
    all["float"] = {Kind::kFloat, "float", "float", sizeof(float)};
    all["double"] = {Kind::kFloat, "double", "double", sizeof(double)};
    all["string"] = {Kind::kString, "string", "std::string"};
    return all;
  }();
  return types;
}

Remarks ReadRemarks(const Json& json, const Place& place) {
  const auto read = [&json, &place](const char* name) {
    const auto found = json.find(name);
    return found == json.end() ? std::string() : PhraseFromJson(*found, Place(place, name));
  };
  read("brief");
  return {read("takenFor"), read("unit"), read("choice")};
}

bool IsShape(const Json& record) { return record.contains("parameters"); }

}  // namespace

/// Records beside each other.
struct TypeMaker::Declarations {
  std::vector<std::unique_ptr<Declaration>> all;
  std::map<std::string, const Declaration*> by_name;
};

/// A record as it stands in the model.
struct TypeMaker::Declaration {
  std::string path;  // its place in the model
  std::string name;
  std::vector<std::string> parameters;
  Declarations nested;
  const Json& json;
};

/// What a type's name is looked up in: first this, then what is outside of it.
struct TypeMaker::Scope {
  const Declarations& declarations;
  std::map<std::string, const ValueType*> parameters;
  std::string cpp_name;
  const Scope* outer;
};

/// Reads a type's name: NAME, or NAME<ARGUMENT,...>.
class TypeMaker::TypeName {
 public:
  TypeName(const std::string& text, const Place& place) : text_(text), place_(place) {
    if (text.size() > kLongestName) {
      place.Fail("a name of more than " + std::to_string(kLongestName) + " characters");
    }
  }

  /// Letters, digits and underscores.
  std::string Word() {
    const auto begin = position_;
    while (position_ < text_.size() &&
           (std::isalnum(static_cast<unsigned char>(text_[position_])) != 0 || text_[position_] == '_')) {
      ++position_;
    }
    if (begin == position_) {
      Fail();
    }
    return text_.substr(begin, position_ - begin);
  }

  bool Skip(char sign) {
    SkipBlanks();
    if (position_ == text_.size() || text_[position_] != sign) {
      return false;
    }
    ++position_;
    SkipBlanks();
    return true;
  }
  void Expect(char sign) {
    if (!Skip(sign)) {
      Fail();
    }
  }
  void ExpectEnd() const {
    if (position_ != text_.size()) {
      Fail();
    }
  }

  const Place& GetPlace() const noexcept { return place_; }

 private:
  void SkipBlanks() { position_ = std::min(text_.find_first_not_of(' ', position_), text_.size()); }

  [[noreturn]] void Fail() const {
    place_.Fail("'" + text_ + "' is no type: write NAME, sequence<TYPE>, bytes<NUMBER> or SHAPE<TYPE,...>");
  }

  const std::string& text_;
  const Place& place_;
  std::size_t position_ = 0;
};

TypeMaker::TypeMaker() : declarations_(std::make_unique<Declarations>()) {}
TypeMaker::~TypeMaker() = default;

void TypeMaker::Declare(const Json& headers, const Place& place) {
  RequireArray(headers, place);
  for (std::size_t i = 0; i < headers.size(); ++i) {
    const Place header(place, i);
    RequireMembersAmong(headers[i], {"name", "brief", "records"}, header);
    ReadDeclarations(RequiredMember(headers[i], "records", header), Place(header, "records"), 1, *declarations_);
  }
  std::map<std::string, std::string> outer;
  RequireNewNames(*declarations_, outer);
}

void TypeMaker::ReadDeclarations(const Json& records, const Place& place, std::size_t depth, Declarations& into) {
  RequireArray(records, place);
  if (depth > kDeepest) {
    place.Fail("records nest more than " + std::to_string(kDeepest) + " deep");
  }
  for (std::size_t i = 0; i < records.size(); ++i) {
    const Json& json = records[i];
    const Place record(place, i);
    RequireMembersAmong(
        json, {"name", "brief", "takenFor", "choice", "parameters", "alias", "is", "unordered", "records", "members"},
        record);
    ReadRemarks(json, record);
    if (json.count("members") + json.count("alias") + json.count("is") != 1) {
      record.Fail("expected one of members, alias and is");
    }
    const Place namePlace(record, "name");
    const std::string& name = NameFromJson(RequiredMember(json, "name", record), namePlace);
    if (Simple().count(name) != 0 || name == kSequence || name == kBytes) {
      namePlace.Fail(name + " is a type of its own");
    }
    const auto [known, isNew] = into.by_name.try_emplace(name, nullptr);
    if (!isNew) {
      namePlace.Fail(name + " is at " + known->second->path + ", too");
    }
    Declaration* const declaration =
        into.all.emplace_back(new Declaration{record.ToString(), name, {}, {}, json}).get();
    known->second = declaration;
    if (IsShape(json)) {
      const Place parametersPlace(record, "parameters");
      RequireArray(json["parameters"], parametersPlace);
      for (const Json& parameter : json["parameters"]) {
        declaration->parameters.push_back(
            NameFromJson(parameter, Place(parametersPlace, declaration->parameters.size())));
      }
    }
    if (json.contains("records")) {
      ReadDeclarations(json["records"], Place(record, "records"), depth + 1, declaration->nested);
    }
  }
}

// In C++ such a name would mean the one or the other by the order of the declarations, here it does not.
void TypeMaker::RequireNewNames(const Declarations& nested, std::map<std::string, std::string>& outer) {
  for (const auto& declaration : nested.all) {
    const auto around = outer.find(declaration->name);
    if (around != outer.end()) {
      const Place whole;
      const Place place(whole, declaration->path);
      Place(place, "name")
          .Fail(declaration->name + " is " + around->second +
                " around it, too: which one is meant would hang on the order of the declarations");
    }
  }
  for (const auto& declaration : nested.all) {
    outer.emplace(declaration->name, "the record at " + declaration->path);
  }
  for (const auto& declaration : nested.all) {
    std::vector<std::string> parameters;
    for (const std::string& parameter : declaration->parameters) {
      if (outer.emplace(parameter, "a parameter of " + declaration->path).second) {
        parameters.push_back(parameter);
      }
    }
    RequireNewNames(declaration->nested, outer);
    for (const std::string& parameter : parameters) {
      outer.erase(parameter);
    }
  }
  for (const auto& declaration : nested.all) {
    outer.erase(declaration->name);
  }
}

void TypeMaker::ResolveAll() { ResolveAll(*declarations_, {*declarations_, {}, {}, nullptr}); }

void TypeMaker::ResolveAll(const Declarations& declarations, const Scope& scope) {
  for (const auto& declaration : declarations.all) {
    if (!IsShape(declaration->json)) {
      const ValueType& type = Make(*declaration, scope, {}, Place());
      ResolveAll(declaration->nested, {declaration->nested, {}, type.cpp_name, &scope});
    }
  }
}

const ValueType& TypeMaker::SequenceOfRecord(const std::string& name, const Place& place) {
  const Scope all{*declarations_, {}, {}, nullptr};
  TypeName reader(name, place);
  const ValueType& type = Resolve(reader, all);
  reader.ExpectEnd();
  if (type.kind != Kind::kRecord) {
    place.Fail(name + " is no record");
  }
  return Sequence(type, place);
}

const ValueType& TypeMaker::Resolve(const Json& text, const Scope& scope, const Place& place) {
  TypeName name(StringFromJson(text, place), place);
  const ValueType& type = Resolve(name, scope);
  name.ExpectEnd();
  return type;
}

const ValueType& TypeMaker::Resolve(TypeName& name, const Scope& scope) {
  const Place& place = name.GetPlace();
  const std::string word = name.Word();
  if (word == kBytes) {
    name.Expect('<');
    const std::string number = name.Word();
    const bool isNumber = number.size() <= 5 && number.find_first_not_of("0123456789") == std::string::npos;
    const std::size_t size = isNumber ? std::stoul(number) : 0;
    if (size == 0 || size > kMostBytes) {
      place.Fail("'" + number + "' is no number of bytes from 1 to " + std::to_string(kMostBytes));
    }
    name.Expect('>');
    return Bytes(size, place);
  }
  std::vector<const ValueType*> arguments;
  if (name.Skip('<')) {
    do {
      arguments.push_back(&Resolve(name, scope));
    } while (name.Skip(','));
    name.Expect('>');
  }
  const auto requireArguments = [&](std::size_t count) {
    if (arguments.size() != count) {
      place.Fail(word + " takes " + Counted(count, "type") + ", found " + std::to_string(arguments.size()));
    }
  };
  if (word == kSequence) {
    requireArguments(1);
    return Sequence(*arguments.front(), place);
  }
  for (const Scope* next = &scope; next != nullptr; next = next->outer) {
    const auto parameter = next->parameters.find(word);
    if (parameter != next->parameters.end()) {
      requireArguments(0);
      return *parameter->second;
    }
    const auto declaration = next->declarations.by_name.find(word);
    if (declaration != next->declarations.by_name.end()) {
      requireArguments(declaration->second->parameters.size());
      return Make(*declaration->second, *next, arguments, place);
    }
  }
  const auto simple = Simple().find(word);
  if (simple != Simple().end()) {
    requireArguments(0);
    return simple->second;
  }
  std::vector<std::string> names = {kSequence, kBytes};
  for (const Scope* next = &scope; next != nullptr; next = next->outer) {
    for (const auto& declaration : next->declarations.all) {
      names.push_back(declaration->name);
    }
  }
  for (const auto& [other, type] : Simple()) {
    names.push_back(other);
  }
  place.Fail("no type '" + word + "'; did you mean " + Nearest(word, names) + "?");
}

const ValueType& TypeMaker::Make(const Declaration& declaration, const Scope& scope,
                                 const std::vector<const ValueType*>& arguments, const Place& place) {
  Scope inner{declaration.nested, {}, scope.cpp_name, &scope};
  inner.cpp_name += (scope.cpp_name.empty() ? "" : "::") + declaration.name;
  const char* separator = "<";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    inner.parameters[declaration.parameters[i]] = arguments[i];
    inner.cpp_name += separator + arguments[i]->cpp_name;
    separator = ", ";
  }
  inner.cpp_name += arguments.empty() ? "" : ">";
  if (inner.cpp_name.size() > kLongestName) {
    place.Fail(declaration.name + " expands to a name of more than " + std::to_string(kLongestName) + " characters");
  }
  const auto [known, isNew] = types_.try_emplace(inner.cpp_name, nullptr);
  if (!isNew) {
    if (known->second == nullptr) {
      place.Fail(inner.cpp_name + " holds itself");
    }
    return *known->second;
  }
  if (++depth_ > kDeepest) {
    place.Fail("types nest more than " + std::to_string(kDeepest) + " deep; does " + declaration.name +
               " expand without end?");
  }
  ValueType type = Describe(declaration, inner);
  type.cpp_name = inner.cpp_name;
  --depth_;
  return *(known->second = &Keep(std::move(type), place));
}

ValueType TypeMaker::Describe(const Declaration& declaration, const Scope& inner) {
  const Place all;
  const Place own(all, declaration.path);
  const Json& json = declaration.json;
  if (json.contains("alias")) {
    return Resolve(json["alias"], inner, Place(own, "alias"));
  }
  RecordType record;
  if (json.contains("is")) {
    const Place isPlace(own, "is");
    const ValueType& model = Resolve(json["is"], inner, isPlace);
    if (model.kind != Kind::kRecord) {
      isPlace.Fail(model.name + " is no record");
    }
    record = *model.record;
  } else {
    ReadMembers(declaration, inner, record);
  }
  record.remarks = ReadRemarks(json, own);
  ValueType type{Kind::kRecord, "record", {}};
  for (const Member& member : record.members) {
    type.weight += member.type->weight;
  }
  if (record.members.empty()) {
    own.Fail("a record has members");
  }
  type.record = &store_->records.emplace_back(std::move(record));
  return type;
}

void TypeMaker::ReadMembers(const Declaration& declaration, const Scope& inner, RecordType& record) {
  const Place all;
  const Place own(all, declaration.path);
  const Place membersPlace(own, "members");
  const Json& members = declaration.json["members"];
  RequireArray(members, membersPlace);
  for (std::size_t i = 0; i < members.size(); ++i) {
    const Json& json = members[i];
    const Place place(membersPlace, i);
    RequireMembersAmong(json, {"id", "name", "type", "brief", "takenFor", "unit", "choice"}, place);
    const Place idPlace(place, "id");
    const Place namePlace(place, "name");
    const auto id = IntegerFromJson(RequiredMember(json, "id", place), 16, false, idPlace);
    const std::string& name = NameFromJson(RequiredMember(json, "name", place), namePlace);
    if (id > common::kMaxDataId) {
      idPlace.Fail(std::to_string(id) + " is no data id from 0 to " + std::to_string(common::kMaxDataId));
    }
    for (const Member& other : record.members) {
      if (other.data_id == id) {
        idPlace.Fail(std::to_string(id) + " is that of " + other.name);
      }
      if (other.name == name) {
        namePlace.Fail(name + " is another member's, too");
      }
    }
    const ValueType& type = Resolve(RequiredMember(json, "type", place), inner, Place(place, "type"));
    record.members.push_back({static_cast<std::uint16_t>(id), name, &type, ReadRemarks(json, place)});
  }
}

const ValueType& TypeMaker::Keep(ValueType type, const Place& place) {
  if (type.weight > kMostParts) {
    place.Fail("a value of " + type.cpp_name + " would have more than " + std::to_string(kMostParts) + " parts");
  }
  if (store_->types.size() == kMostTypes) {
    place.Fail("more than " + std::to_string(kMostTypes) + " types");
  }
  return store_->types.emplace_back(std::move(type));
}

const ValueType& TypeMaker::Sequence(const ValueType& element, const Place& place) {
  ValueType type{Kind::kSequence, "sequence of " + element.name, "std::vector<" + element.cpp_name + ">"};
  if (element.kind == Kind::kInteger && element.size == 1 && !element.is_signed) {
    type.kind = Kind::kBytes;
    type.name = kBytes;
  }
  type.element = &element;
  type.weight = 1 + 2 * element.weight;
  return Keep(std::move(type), place);
}

const ValueType& TypeMaker::Bytes(std::size_t size, const Place& place) {
  const std::string number = std::to_string(size);
  ValueType type{Kind::kBytes, Counted(size, "byte"), "std::array<std::uint8_t, " + number + ">", size};
  type.element = &Simple().at("uint8");
  type.weight = 1 + size;
  return Keep(std::move(type), place);
}

}  // namespace tarn7::tool
