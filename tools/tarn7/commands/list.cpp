#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/tarn7/commands/commands.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

namespace {

/// An interface, and which of its fields to show.
struct Selection {
  const Interface& interface;
  std::vector<const Field*> fields;
};

/// What the targets name, in the table's order; everything if there are none.
std::vector<Selection> Select(const InterfaceTable& interfaces, const std::vector<std::string>& targets) {
  std::vector<const Field*> wanted;
  for (const std::string& target : targets) {
    for (const FieldAddress& address : interfaces.FindAddresses(target)) {
      wanted.push_back(address.field);
    }
  }
  std::vector<Selection> selections;
  for (const Interface& interface : interfaces.All()) {
    Selection selection{interface, {}};
    for (const Field& field : interface.fields) {
      if (targets.empty() || std::find(wanted.begin(), wanted.end(), &field) != wanted.end()) {
        selection.fields.push_back(&field);
      }
    }
    if (!selection.fields.empty()) {
      selections.push_back(std::move(selection));
    }
  }
  return selections;
}

void AddRemarks(Json& json, const Remarks& remarks) {
  for (const auto& [name, text] :
       {std::pair("takenFor", &remarks.taken_for), {"unit", &remarks.unit}, {"choice", &remarks.choice}}) {
    if (!text->empty()) {
      json[name] = *text;
    }
  }
}

/// Adds what a type is, and the record in it.
void AddType(Json& json, const ValueType& type) {
  json["type"] = type.name;
  const ValueType* const record = RecordIn(type);
  if (record == nullptr) {
    return;
  }
  json["record"] = record->cpp_name;
  Json remarks = Json::object();
  AddRemarks(remarks, record->record->remarks);
  if (!remarks.empty()) {
    json["recordRemarks"] = std::move(remarks);
  }
  Json& members = json["members"] = Json::array();
  for (const Member& member : record->record->members) {
    Json entry = {{"id", member.data_id}, {"name", member.name}};
    AddRemarks(entry, member.remarks);
    AddType(entry, *member.type);
    members.push_back(std::move(entry));
  }
}

Json ToJson(const Field& field) {
  Json json = {{"field", field.name}, {"getter", field.getter}};
  if (field.HasSetter()) {
    json["setter"] = field.setter;
  }
  json["event"] = field.event;
  json["eventgroup"] = field.eventgroup;
  AddType(json, *field.type);
  return json;
}

Json ToJson(const Selection& selection) {
  const Interface& interface = selection.interface;
  Json json = {{"interface", interface.name},
               {"role", interface.RoleName()},
               {"service", interface.service_id},
               {"araService", interface.ara_service_id},
               {"majorVersion", interface.major_version},
               {"minorVersion", interface.minor_version}};
  for (const auto& [name, text] : {std::pair("choice", &interface.choice), {"file", &interface.file}}) {
    if (!text->empty()) {
      json[name] = *text;
    }
  }
  Json& fields = json["fields"] = Json::array();
  for (const Field* field : selection.fields) {
    fields.push_back(ToJson(*field));
  }
  return json;
}

std::string Hex(std::uint16_t id) {
  std::ostringstream text;
  text << "0x" << std::hex << std::uppercase << std::setfill('0') << std::setw(4) << id;
  return text.str();
}

/// "taken for: ratio; our choice: that it is a float", or nothing.
std::string ToText(const Remarks& remarks) {
  std::string text;
  for (const auto& [name, remark] :
       {std::pair("taken for: ", &remarks.taken_for), {"unit: ", &remarks.unit}, {"our choice: ", &remarks.choice}}) {
    if (!remark->empty()) {
      text += (text.empty() ? "" : "; ") + (name + *remark);
    }
  }
  return text;
}

/// As its name, but with that of the record in it.
std::string TypeText(const ValueType& type) {
  return type.kind == ValueType::Kind::kSequence ? "sequence of " + TypeText(*type.element)
         : type.kind == ValueType::Kind::kRecord ? type.cpp_name
                                                 : type.name;
}

void WriteRecord(std::ostream& text, const RecordType& record, const std::string& indent) {
  if (const std::string remarks = ToText(record.remarks); !remarks.empty()) {
    text << indent << remarks << '\n';
  }
  for (const Member& member : record.members) {
    const std::string remarks = ToText(member.remarks);
    text << indent << std::left << std::setw(4) << member.data_id << std::setw(28) << member.name
         << TypeText(*member.type) << (remarks.empty() ? "" : "  ") << remarks << '\n';
    if (const ValueType* const nested = RecordIn(*member.type)) {
      WriteRecord(text, *nested->record, indent + "    ");
    }
  }
}

std::string ToTable(const Selection& selection) {
  const Interface& interface = selection.interface;
  std::ostringstream text;
  text << interface.name << "  " << interface.RoleName() << "  service " << Hex(interface.service_id) << "  version "
       << static_cast<int>(interface.major_version) << '.' << interface.minor_version << "  ara::com id "
       << interface.ara_service_id << (interface.IsOfLibrary() ? "" : "  from ") << interface.file << '\n';
  if (!interface.choice.empty()) {
    text << "  our choice: " << interface.choice << '\n';
  }
  for (const Field* field : selection.fields) {
    text << "  " << std::left << std::setw(32) << field->name << "getter " << Hex(field->getter) << "  setter "
         << (field->HasSetter() ? Hex(field->setter) : "-     ") << "  event " << Hex(field->event) << "  eventgroup "
         << Hex(field->eventgroup) << "  " << TypeText(*field->type->element) << '\n';
    WriteRecord(text, *field->type->element->record, "      ");
  }
  return text.str();
}

}  // namespace

void List(const Context& context, const ListOptions& options) {
  Json interfaces = Json::array();
  for (const Selection& selection : Select(context.interfaces, options.targets)) {
    if (options.as_json) {
      interfaces.push_back(ToJson(selection));
    } else {
      context.output.WriteLine(Printable(ToTable(selection), "\n"));
    }
  }
  if (options.as_json) {
    context.output.WriteLine(Printable(interfaces.dump(2, ' ', false, Json::error_handler_t::replace), "\n"));
  }
}

}  // namespace tarn7::tool
