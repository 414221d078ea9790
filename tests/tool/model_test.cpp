#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/tarn7/error.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/model/model_reader.h"

namespace tarn7::tool {
namespace {

constexpr const char* kHead = R"({"name":"door","role":"consumed","araServiceId":7,"serviceId":"0x7001",)"
                              R"("version":{"major":1,"minor":2},)";

std::string Model(const std::string& fields, const std::string& records) {
  return kHead + (R"("fields":)" + fields) + R"(,"headers":[{"name":"x","records":)" + records + "}]}";
}

constexpr const char* kFields = R"([{"name":"state","getter":"0x4010","record":"R"}])";

/// A record R whose one member has that type, and further records.
std::string WithType(const std::string& type, const std::string& further = "") {
  return Model(kFields, R"([{"name":"R","members":[{"id":0,"name":"a","type":")" + type + R"("}]})" + further + "]");
}

std::string Refusal(const std::string& model) {
  try {
    ReadModel(model);
    return "accepted";
  } catch (const ValueError& error) {
    return error.what();
  }
}

TEST(Model, AMistakeIsRefusedWithItsPlace) {
  constexpr const char* kShape = R"(,{"name":"S","parameters":["T"],"members":[{"id":0,"name":"t","type":"T"}]})";
  const std::pair<std::string, const char*> refusals[] = {
      {"{", "no JSON: parse error at line 1, column 2"},
      {"[]", "the value: expected an object, found []"},
      {"{}", "version: this member is required"},
      {std::string(kHead) + R"("feilds":[]})", "feilds: no such member; did you mean fields?"},
      {R"({"name":"a b","version":{"major":1,"minor":0}})", "name: \"a b\" is no name"},
      {R"({"name":"a","version":{"major":1,"minor":0},"role":"server"})",
       "role: expected \"consumed\" or \"provided\""},
      {R"({"name":"a","version":{"major":255,"minor":0},"role":"consumed","araServiceId":1,"serviceId":"0x1"})",
       "serviceId: \"0x1\" is no id from \"0x0001\" to \"0xfffe\""},
      {R"({"name":"a","version":{"major":255,"minor":0},"role":"consumed","araServiceId":1,"serviceId":"0x1000"})",
       "version.major: 255 is greater than 254"},
      {Model("[]", "[]"), "fields: an interface has fields"},
      {Model(R"([{"name":"a","getter":"0x8000","record":"R"}])", "[]"),
       "fields[0].getter: \"0x8000\" is no id from \"0x0001\" to \"0x7fff\""},
      {Model(kFields, "[]"), "fields[0].record: no type 'R'"},
      {Model(R"([{"name":"a","getter":"0x4010","record":"uint8"}])", "[]"), "fields[0].record: uint8 is no record"},
      {WithType("uint8").replace(WithType("").find("[{\"name\":\"state"), 1,
                                 R"([{"name":"m","getter":"0x400F","record":"R","mutable":true},)"),
       "fields[1].getter: the getter of state has the id of the setter of m"},
      {WithType("uint8").replace(WithType("").find("[{\"name\":\"state"), 1,
                                 R"([{"name":"state","getter":"0x4020","record":"R"},)"),
       "fields[1].name: state is another field's, too"},
      {WithType("uint9"), "headers[0].records[0].members[0].type: no type 'uint9'; did you mean uint8?"},
      {WithType("sequence"), "headers[0].records[0].members[0].type: sequence takes 1 type, found 0"},
      {WithType("sequence<uint8"), "headers[0].records[0].members[0].type: 'sequence<uint8' is no type"},
      {WithType("uint8>"), "headers[0].records[0].members[0].type: 'uint8>' is no type"},
      {WithType(""), "headers[0].records[0].members[0].type: '' is no type"},
      {WithType("bytes<0>"), "'0' is no number of bytes from 1 to 65535"},
      {WithType("bytes<99999999999999999999>"), "is no number of bytes"},
      {WithType("S", kShape), "members[0].type: S takes 1 type, found 0"},
      {WithType("S<uint8,uint8>", kShape), "members[0].type: S takes 1 type, found 2"},
      {WithType("uint8<bool>"), "members[0].type: uint8 takes 0 types, found 1"},
      {WithType("sequence<R>"), "headers[0].records[0].members[0].type: R holds itself"},
      {WithType("S<bool>", R"(,{"name":"S","parameters":["T"],"members":[{"id":0,"name":"t","type":"S<T>"}]})"),
       "headers[0].records[1].members[0].type: S<bool> holds itself"},
      {WithType("A", R"(,{"name":"A","alias":"B"},{"name":"B","alias":"A"})"), "records[2].alias: A holds itself"},
      {WithType("A", R"(,{"name":"A","is":"bool"})"), "headers[0].records[1].is: bool is no record"},
      // Shapes that expand without end: by depth, by name, by number of parts.
      {WithType("S<bool>", R"(,{"name":"S","parameters":["T"],"members":[{"id":0,"name":"t","type":"S<Q<T>>"}]},)"
                           R"({"name":"Q","parameters":["T"],"members":[{"id":0,"name":"t","type":"T"}]})"),
       "types nest more than 64 deep; does Q expand without end?"},
      {WithType("S<bool>", R"(,{"name":"S","parameters":["T"],"members":[{"id":0,"name":"t","type":"S<P<T,T>>"}]},)"
                           R"({"name":"P","parameters":["T","U"],"members":[{"id":0,"name":"t","type":"T"}]})"),
       "expands to a name of more than 1000 characters"},
      {WithType("sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<"
                "sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<sequence<bool>>>>>>>"
                ">>>>>>>>>>>>>>"),
       "would have more than 1000000 parts"},
      {WithType(std::string(2000, 'x')), "a name of more than 1000 characters"},
      {WithType("uint8", R"(,{"name":"R","members":[]})"), "headers[0].records[1].name: R is at headers[0].records[0]"},
      {WithType("uint8", R"(,{"name":"Q","members":[]})"), "headers[0].records[1]: a record has members"},
      {WithType("uint8", R"(,{"name":"Q","members":[],"is":"R"})"),
       "records[1]: expected one of members, alias and is"},
      {WithType("uint8", R"(,{"name":"uint8","alias":"bool"})"), "records[1].name: uint8 is a type of its own"},
      {WithType("uint8", R"(,{"name":"Q","members":[{"id":4096,"name":"a","type":"bool"}]})"),
       "headers[0].records[1].members[0].id: 4096 is no data id from 0 to 4095"},
      {WithType("uint8",
                R"(,{"name":"Q","members":[{"id":1,"name":"a","type":"bool"},{"id":1,"name":"b","type":"bool"}]})"),
       "headers[0].records[1].members[1].id: 1 is that of a"},
      {WithType("uint8",
                R"(,{"name":"Q","members":[{"id":1,"name":"a","type":"bool"},{"id":2,"name":"a","type":"bool"}]})"),
       "headers[0].records[1].members[1].name: a is another member's, too"},
      {WithType("uint8", R"(,{"name":"Q","members":[{"id":1,"name":"a","type":"bool","takenFor":"\u001b[2J"}]})"),
       "headers[0].records[1].members[0].takenFor: control characters have no place in a text"},
      // Names that C++ would take for another thing, depending on where they are used.
      {WithType("uint8", R"(,{"name":"Q","records":[{"name":"S","records":[{"name":"R","members":[]}],"members":[]}],)"
                         R"("members":[]})"),
       "headers[0].records[1].records[0].records[0].name: R is the record at headers[0].records[0] around it, too"},
      {WithType("uint8", R"(,{"name":"Q","parameters":["T"],"records":[{"name":"T","members":[]}],"members":[]})"),
       "headers[0].records[1].records[0].name: T is a parameter of headers[0].records[1] around it, too"},
      {WithType("uint8", R"(,{"name":"Q","records":[{"name":"Q","members":[]}],"members":[]})"),
       "headers[0].records[1].records[0].name: Q is the record at headers[0].records[1] around it, too"},
      {WithType("uint8", R"(,{"name":"Q","members":[],"name":"P"})"),
       "headers[0].records[1].name: there are two members of this name"},
      {WithType("uint8", R"(,{"name":"Q","members":[{"id":0,"name":"a","type":"bool","id":1}]})"),
       "headers[0].records[1].members[0].id: there are two members of this name"}};
  for (const auto& [model, refusal] : refusals) {
    EXPECT_THAT(Refusal(model), testing::HasSubstr(refusal)) << model;
  }
}

TEST(Model, NamesAreLookedUpFromTheInsideOut) {
  const Interface interface =
      ReadModel(Model(R"([{"name":"state","getter":"0x4010","record":"Outer","mutable":true}])",
                      R"([{"name":"Box","parameters":["T"],"members":[{"id":0,"name":"value","type":"T"}]},
          {"name":"Boxes","parameters":["T"],"alias":"Box<sequence<T>>"},
          {"name":"Sibling","records":[{"name":"Inner","members":[{"id":0,"name":"besides","type":"bool"}]}],
           "members":[{"id":0,"name":"a","type":"Inner"}]},
          {"name":"Outer","takenFor":"a door","records":[
             {"name":"Inner","members":[{"id":0,"name":"inside","type":"sequence<uint8>","choice":"its kind"}]}],
           "members":[{"id":3,"name":"inner","type":"Boxes<Inner>"}, {"id":1,"name":"raw","type":"bytes<4>"},
                      {"id":2,"name":"other","type":"Other"}]},
          {"name":"Other","is":"Sibling"}])"));
  const Field& field = interface.fields.front();
  EXPECT_EQ(field.setter, 0x4011);
  EXPECT_EQ(field.eventgroup, 0xC010);
  const ValueType& outer = *field.type->element;
  EXPECT_EQ(outer.record->remarks.taken_for, "a door");
  const std::vector<Member>& members = outer.record->members;
  ASSERT_EQ(members.size(), 3U);
  EXPECT_EQ(members[0].type->cpp_name, "Boxes<Outer::Inner>");
  const Member& value = members[0].type->record->members.front();
  EXPECT_EQ(value.type->name, "sequence of record");
  EXPECT_EQ(value.type->cpp_name, "std::vector<Outer::Inner>");
  const Member& inside = value.type->element->record->members.front();
  EXPECT_EQ(inside.name, "inside");
  EXPECT_EQ(inside.type->name, "bytes");
  EXPECT_EQ(inside.remarks.choice, "its kind");
  EXPECT_EQ(members[1].type->name, "4 bytes");
  EXPECT_EQ(members[2].type->cpp_name, "Other");
  EXPECT_EQ(members[2].type->record->members.front().type->cpp_name, "Sibling::Inner");
}

}  // namespace
}  // namespace tarn7::tool
