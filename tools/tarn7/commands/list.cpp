#include <algorithm>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

/// An interface, and which of its fields to show.
struct Selection {
  const Interface& interface;
  std::vector<const Field*> fields;
};

/// What the targets name, in the library's order; everything if there are none.
std::vector<Selection> Select(const std::vector<std::string>& targets) {
  std::vector<const Field*> wanted;
  for (const std::string& target : targets) {
    for (const FieldAddress& address : FindAddresses(target)) {
      wanted.push_back(address.field);
    }
  }
  std::vector<Selection> selections;
  for (const Interface& interface : Interfaces()) {
    Selection selection{interface, {}};
    for (const auto& field : interface.fields) {
      if (targets.empty() || std::find(wanted.begin(), wanted.end(), field.get()) != wanted.end()) {
        selection.fields.push_back(field.get());
      }
    }
    if (!selection.fields.empty()) {
      selections.push_back(std::move(selection));
    }
  }
  return selections;
}

/// The record members that a type holds, its own or those of its elements; null for a type without any.
const std::vector<Member>* MembersOf(const ValueType& type) {
  if (type.kind == ValueType::Kind::kSequence) {
    return MembersOf(type.element.front());
  }
  return type.kind == ValueType::Kind::kRecord ? &type.members : nullptr;
}

Json MembersToJson(const std::vector<Member>& members) {
  Json array = Json::array();
  for (const Member& member : members) {
    Json entry = {{"id", member.data_id}, {"name", member.name}, {"type", member.type.name}};
    if (const auto* nested = MembersOf(member.type)) {
      entry["members"] = MembersToJson(*nested);
    }
    array.push_back(std::move(entry));
  }
  return array;
}

Json ToJson(const Field& field) {
  Json json = {{"field", field.Name()}, {"getter", field.Ids().getter}};
  if (field.HasSetter()) {
    json["setter"] = field.Ids().setter;
  }
  json["event"] = field.Ids().event;
  json["eventgroup"] = field.Ids().eventgroup;
  json["type"] = field.Type().name;
  json["members"] = MembersToJson(*MembersOf(field.Type()));
  return json;
}

Json ToJson(const Selection& selection) {
  const Interface& interface = selection.interface;
  Json fields = Json::array();
  for (const Field* field : selection.fields) {
    fields.push_back(ToJson(*field));
  }
  return {{"interface", interface.name},
          {"role", interface.Role()},
          {"service", interface.service_id},
          {"araService", interface.ara_service_id},
          {"majorVersion", interface.major_version},
          {"minorVersion", interface.minor_version},
          {"fields", std::move(fields)}};
}

std::string Hex(std::uint16_t id) {
  std::ostringstream text;
  text << "0x" << std::hex << std::uppercase << std::setfill('0') << std::setw(4) << id;
  return text.str();
}

void WriteMembers(std::ostream& text, const std::vector<Member>& members, const std::string& indent) {
  for (const Member& member : members) {
    text << indent << std::left << std::setw(4) << member.data_id << std::setw(28) << member.name << member.type.name
         << '\n';
    if (const auto* nested = MembersOf(member.type)) {
      WriteMembers(text, *nested, indent + "    ");
    }
  }
}

std::string ToTable(const Selection& selection) {
  const Interface& interface = selection.interface;
  std::ostringstream text;
  text << interface.name << "  " << interface.Role() << "  service " << Hex(interface.service_id) << "  version "
       << static_cast<int>(interface.major_version) << '.' << interface.minor_version << "  ara::com id "
       << interface.ara_service_id << '\n';
  for (const Field* field : selection.fields) {
    const Field::Identifiers& ids = field->Ids();
    text << "  " << std::left << std::setw(32) << field->Name() << "getter " << Hex(ids.getter) << "  setter "
         << (field->HasSetter() ? Hex(ids.setter) : "-     ") << "  event " << Hex(ids.event) << "  eventgroup "
         << Hex(ids.eventgroup) << '\n';
    WriteMembers(text, *MembersOf(field->Type()), "      ");
  }
  return text.str();
}

struct ListOptions {
  std::vector<std::string> targets;
  bool as_json = false;
};

void List(Output& output, const ListOptions& options) {
  Json interfaces = Json::array();
  for (const Selection& selection : Select(options.targets)) {
    if (options.as_json) {
      interfaces.push_back(ToJson(selection));
    } else {
      output.WriteLine(ToTable(selection));
    }
  }
  if (options.as_json) {
    output.WriteLine(interfaces.dump(2));
  }
}

}  // namespace

void AddListCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("list", "Show interfaces, fields, identifiers and record members");
  const auto options = std::make_shared<ListOptions>();
  command->add_option("TARGET", options->targets,
                      "INTERFACE/FIELD, or INTERFACE for all of its fields; any mix of them");
  command->add_flag("--json", options->as_json, "As JSON instead of a table");
  command->footer("Example:\n  tarn7 list psd2/laneLayer");
  command->callback([&chosen, options] { chosen = [options](Output& output) { List(output, *options); }; });
}

}  // namespace tarn7::tool
