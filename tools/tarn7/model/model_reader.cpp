#include "tools/tarn7/model/model_reader.h"

#include <charconv>
#include <map>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "tools/tarn7/model/type_maker.h"
#include "tools/tarn7/values/json_checks.h"

namespace tarn7::tool {

namespace {

constexpr std::uint16_t kEventBit = 0x8000;

std::uint16_t IdFromJson(const Json& json, std::uint16_t last, const Place& place) {
  constexpr std::size_t kDigits = 4;
  const std::string& text = StringFromJson(json, place);
  std::uint16_t id = 0;
  const char* const end = text.data() + text.size();
  if (text.size() != 2 + kDigits || text.compare(0, 2, "0x") != 0 ||
      std::from_chars(text.data() + 2, end, id, 16).ptr != end || id == 0 || id > last) {
    const unsigned char greatest[] = {static_cast<unsigned char>(last >> 8U), static_cast<unsigned char>(last)};
    place.Fail(Summary(json) + R"( is no id from "0x0001" to "0x)" + ToHex(greatest, sizeof(greatest)) + '"');
  }
  return id;
}

std::uint64_t NumberUpTo(std::uint64_t last, const Json& json, std::size_t bits, const Place& place) {
  const std::uint64_t number = IntegerFromJson(json, bits, false, place);
  if (number > last) {
    place.Fail(std::to_string(number) + " is greater than " + std::to_string(last));
  }
  return number;
}

Interface::Role RoleFromJson(const Json& json, const Place& place) {
  const std::string& role = StringFromJson(json, place);
  if (role != "consumed" && role != "provided") {
    place.Fail(R"(expected "consumed" or "provided", found )" + Summary(json));
  }
  return role == "provided" ? Interface::Role::kProvided : Interface::Role::kConsumed;
}

bool IsMutable(const Json& field, const Place& place) {
  const auto found = field.find("mutable");
  return found != field.end() && BoolFromJson(*found, Place(place, "mutable"));
}

void ReadFields(const Json& fields, const Place& place, TypeMaker& types, Interface& interface) {
  RequireArray(fields, place);
  if (fields.empty()) {
    place.Fail("an interface has fields");
  }
  std::set<std::string> names;
  std::map<std::uint16_t, std::string> methods;  // by id, what it is
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const Json& json = fields[i];
    const Place here(place, i);
    RequireMembersAmong(json, {"name", "getter", "record", "mutable", "brief"}, here);
    const Place namePlace(here, "name");
    const Place getterPlace(here, "getter");
    const Place recordPlace(here, "record");
    const std::string& name = NameFromJson(RequiredMember(json, "name", here), namePlace);
    if (!names.insert(name).second) {
      namePlace.Fail(name + " is another field's, too");
    }
    const bool isMutable = IsMutable(json, here);
    const std::uint16_t getter =
        IdFromJson(RequiredMember(json, "getter", here), isMutable ? kEventBit - 2 : kEventBit - 1, getterPlace);
    const auto add = [&methods, &getterPlace](std::uint16_t method, const std::string& what) {
      const auto [known, isNew] = methods.emplace(method, what);
      if (!isNew) {
        getterPlace.Fail("the " + what + " has the id of the " + known->second);
      }
    };
    add(getter, "getter of " + name);
    if (isMutable) {
      add(getter + 1, "setter of " + name);
    }
    const auto event = static_cast<std::uint16_t>(getter | kEventBit);
    const ValueType& type =
        types.SequenceOfRecord(StringFromJson(RequiredMember(json, "record", here), recordPlace), recordPlace);
    const auto setter = static_cast<std::uint16_t>(isMutable ? getter + 1 : 0);
    interface.fields.push_back({name, getter, setter, event, event, &type});
  }
}

}  // namespace

Interface ReadModel(std::string_view text) {
  constexpr std::uint16_t kLastId = 0xFFFE;  // 0xFFFF stands for any
  constexpr std::uint8_t kLastMajor = 0xFE;
  constexpr std::uint32_t kLastMinor = 0xFFFFFFFE;
  const Json model = ParseJsonWithoutDuplicates(text, "no JSON");
  const Place whole;
  RequireMembersAmong(model,
                      {"$schema", "name", "class", "role", "brief", "choice", "araServiceId", "serviceId", "version",
                       "metaModelPath", "example", "fields", "checkOrder", "headers"},
                      whole);
  const auto member = [&model, &whole](const char* name) -> const Json& { return RequiredMember(model, name, whole); };
  const Place versionPlace(whole, "version");
  const Json& version = member("version");
  RequireMembersAmong(version, {"major", "minor"}, versionPlace);
  const auto part = [&version, &versionPlace](const char* name, std::uint64_t last) {
    return NumberUpTo(last, RequiredMember(version, name, versionPlace), 32, Place(versionPlace, name));
  };
  Interface interface {};
  interface.name = NameFromJson(member("name"), Place(whole, "name"));
  interface.role = RoleFromJson(member("role"), Place(whole, "role"));
  interface.ara_service_id =
      static_cast<std::uint16_t>(NumberUpTo(kLastId, member("araServiceId"), 16, Place(whole, "araServiceId")));
  interface.service_id = IdFromJson(member("serviceId"), kLastId, Place(whole, "serviceId"));
  interface.major_version = static_cast<std::uint8_t>(part("major", kLastMajor));
  interface.minor_version = static_cast<std::uint32_t>(part("minor", kLastMinor));
  if (model.contains("choice")) {
    interface.choice = PhraseFromJson(member("choice"), Place(whole, "choice"));
  }
  TypeMaker types;
  types.Declare(member("headers"), Place(whole, "headers"));
  types.ResolveAll();
  ReadFields(member("fields"), Place(whole, "fields"), types, interface);
  interface.types = types.GetStore();
  return interface;
}

}  // namespace tarn7::tool
