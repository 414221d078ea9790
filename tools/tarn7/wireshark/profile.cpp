#include "tools/tarn7/wireshark/profile.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "tools/tarn7/wireshark/user_table.h"

namespace tarn7::tool {

namespace {

constexpr unsigned kLengthBits = 32;                                            // of every length field
constexpr std::uint64_t kPadding = 0;                                           // none
constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::int32_t>::max();  // Wireshark's greatest

/// The port is the stacks' usual one. That it is no default has a second effect: Wireshark 4.0 reads the table of
/// records before that of types, and gives the members their types when a preference changes.
constexpr const char* kPreferences =
    "someip.payload_dissector_activated: TRUE\n"
    "someip.reassemble_tp: TRUE\n"
    "someip.udp.port: 30509\n";

constexpr const char* kErrorName = "error";

/// What a table refers to: a row of another one.
struct Reference {
  enum class Table : std::uint8_t { kBaseTypes = 1, kStrings = 2, kArrays = 3, kStructs = 4, kEnums = 7 };

  UserTable::Value TableNumber() const { return static_cast<int>(table); }
  UserTable::Value Id() const { return UserTable::Hex(id); }

  Table table;
  std::uint32_t id;
};

class ProfileBuilder {
 public:
  ProfileBuilder() {
    strings_.AddRow({UserTable::Hex(string_.id), "string", "utf-8", true, 0, kLengthBits, true, kPadding});
    const Reference byte = BaseType("bool", "uint8", 1);
    for (const bool value : {false, true}) {
      enums_.AddRow({bool_.Id(), "bool", byte.TableNumber(), byte.Id(), 2, UserTable::Hex(value ? 1 : 0),
                     value ? "true" : "false"});
    }
    error_ = ErrorCode();
  }

  void Add(const Interface& interface) {
    services_.AddRow({UserTable::Hex(interface.service_id), interface.name});
    for (const Field& field : interface.fields) {
      Add(interface, field);
    }
  }

  std::map<std::string, std::string> Files() const {
    return {{"SOMEIP_service_identifiers", services_.Text()},
            {"SOMEIP_method_event_identifiers", methods_.Text()},
            {"SOMEIP_eventgroup_identifiers", eventgroups_.Text()},
            {"SOMEIP_parameter_list", parameters_.Text()},
            {"SOMEIP_parameter_base_types", base_types_.Text()},
            {"SOMEIP_parameter_strings", strings_.Text()},
            {"SOMEIP_parameter_arrays", arrays_.Text()},
            {"SOMEIP_parameter_structs", structs_.Text()},
            {"SOMEIP_parameter_enums", enums_.Text()},
            // Service discovery may not be in the capture, so any port may carry the services.
            {"heuristic_protos", "someip_udp_heur,1\nsomeip_tcp_heur,1\n"},
            {"preferences", kPreferences}};
  }

 private:
  enum class MessageType : std::uint8_t { kRequest = 0x00, kNotification = 0x02, kResponse = 0x80, kError = 0x81 };

  void Add(const Interface& interface, const Field& field) {
    const std::string path = interface.name + '.' + field.name;
    const Reference value = Describe(*field.type, field.name, path);
    const auto addMessage = [&](std::uint16_t method, MessageType type) {
      const bool isError = type == MessageType::kError;
      const Reference& content = isError ? error_ : value;
      parameters_.AddRow({UserTable::Hex(interface.service_id), UserTable::Hex(method), interface.major_version,
                          UserTable::Hex(static_cast<std::uint64_t>(type)), false, 1, 0,
                          isError ? kErrorName : field.name, content.TableNumber(), content.Id(), path});
    };
    const auto addName = [&interface](UserTable& table, std::uint16_t id, const std::string& name) {
      table.AddRow({UserTable::Hex(interface.service_id), UserTable::Hex(id), name});
    };
    addName(methods_, field.getter, "get " + field.name);
    addMessage(field.getter, MessageType::kResponse);
    addMessage(field.getter, MessageType::kError);
    if (field.HasSetter()) {
      addName(methods_, field.setter, "set " + field.name);
      addMessage(field.setter, MessageType::kRequest);
      addMessage(field.setter, MessageType::kResponse);
      addMessage(field.setter, MessageType::kError);
    }
    addName(methods_, field.event, field.name);
    addMessage(field.event, MessageType::kNotification);
    addName(eventgroups_, field.eventgroup, field.name);
  }

  /// `path` is that of the value, in display filters.
  Reference Describe(const ValueType& type, const std::string& name, const std::string& path) {
    switch (type.kind) {
      case ValueType::Kind::kBool:
        return bool_;
      case ValueType::Kind::kInteger:
        return Integer(type.name, type.size);
      case ValueType::Kind::kFloat:
        return BaseType(type.name, "float" + std::to_string(8 * type.size), type.size);
      case ValueType::Kind::kString:
        return string_;
      case ValueType::Kind::kBytes:
        return Array(Describe(*type.element, name, path), type.size, type.size == 0 ? kAnyNumber : type.size, name,
                     path);
      case ValueType::Kind::kSequence:
        return Array(Describe(*type.element, name, path), 0, kAnyNumber, name, path);
      case ValueType::Kind::kRecord:
        break;
    }
    return Struct(type.record->members, path);
  }

  Reference Integer(const std::string& name, std::size_t size) { return BaseType(name, name, size); }

  Reference BaseType(const std::string& name, const std::string& wiresharkName, std::size_t size) {
    const auto known = base_type_ids_.find(name);
    if (known != base_type_ids_.end()) {
      return {Reference::Table::kBaseTypes, known->second};
    }
    const Reference type = Next(Reference::Table::kBaseTypes);
    base_type_ids_.emplace(name, type.id);
    base_types_.AddRow({type.Id(), name, wiresharkName, true, 8 * size, 8 * size});
    return type;
  }

  Reference Array(Reference element, std::uint64_t min, std::uint64_t max, const std::string& name,
                  const std::string& path) {
    const Reference array = Next(Reference::Table::kArrays);
    arrays_.AddRow(
        {array.Id(), name, element.TableNumber(), element.Id(), 1, path, 0, min, max, kLengthBits, kPadding});
    return array;
  }

  Reference Struct(const std::vector<Member>& members, const std::string& path) {
    const Reference record = Next(Reference::Table::kStructs);
    // The place of a member in its record is its data id.
    std::uint32_t places = 0;
    for (const Member& member : members) {
      places = std::max(places, member.data_id + 1U);
    }
    for (const Member& member : members) {
      const std::string memberPath = path + '.' + member.name;
      const Reference type = Describe(*member.type, member.name, memberPath);
      structs_.AddRow({record.Id(), path, kLengthBits, kPadding, true, places, member.data_id, member.name,
                       type.TableNumber(), type.Id(), memberPath});
    }
    return record;
  }

  /// What an error response carries: no tags, but its fixed members one after the other.
  Reference ErrorCode() {
    const Reference record = Next(Reference::Table::kStructs);
    const std::pair<const char*, Reference> members[] = {{"marker", Integer("uint8", 1)},
                                                         {"length", Integer("uint16", 2)},
                                                         {"domain", Integer("uint64", 8)},
                                                         {"value", Integer("int32", 4)},
                                                         {"supportData", Integer("int32", 4)}};
    for (std::size_t place = 0; place < std::size(members); ++place) {
      const auto& [name, type] = members[place];
      structs_.AddRow({record.Id(), kErrorName, kLengthBits, kPadding, false, std::size(members), place, name,
                       type.TableNumber(), type.Id(), std::string(kErrorName) + '.' + name});
    }
    return record;
  }

  Reference Next(Reference::Table table) { return {table, ++last_id_}; }

  std::uint32_t last_id_ = 0;
  std::map<std::string, std::uint32_t> base_type_ids_;
  const Reference string_ = Next(Reference::Table::kStrings);
  const Reference bool_ = Next(Reference::Table::kEnums);
  Reference error_{};
  UserTable services_;
  UserTable methods_;
  UserTable eventgroups_;
  UserTable parameters_;
  UserTable base_types_;
  UserTable strings_;
  UserTable arrays_;
  UserTable structs_;
  UserTable enums_;
};

}  // namespace

std::map<std::string, std::string> MakeWiresharkProfile(const std::deque<Interface>& interfaces) {
  ProfileBuilder builder;
  for (const Interface& interface : interfaces) {
    builder.Add(interface);
  }
  return builder.Files();
}

}  // namespace tarn7::tool
