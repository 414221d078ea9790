#include "tools/tarn7/model/field_values.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "tools/tarn7/error.h"
#include "tools/tarn7/values/encode.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/nearest.h"

namespace tarn7::tool {

FieldValues ReadFieldValues(std::string_view text, const std::string& source, const std::vector<FieldAddress>& fields) {
  const Json json = ParseJson(text, source);
  std::vector<std::string> names;
  for (const FieldAddress& address : fields) {
    names.push_back(address.field->name);
  }
  if (!json.is_object()) {
    throw ValueError(source + ": expected an object of fields, such as {\"" + names.front() + "\":[]}");
  }
  FieldValues values;
  for (const auto& item : json.items()) {
    const std::string& key = item.key();
    const auto found = std::find_if(fields.begin(), fields.end(), [&key](const FieldAddress& address) {
      return key == address.field->name || key == address.ToString();
    });
    if (found == fields.end()) {
      throw ValueError(source + ": no field '" + key + "'; did you mean '" + Nearest(key, names) + "'?");
    }
    try {
      values.insert_or_assign(found->field, Encode(*found->field->type, item.value()));
    } catch (const ValueError& error) {
      throw ValueError(source + ": " + key + ": " + error.what());
    }
  }
  return values;
}

FieldValues ReadFieldValuesFile(const std::string& path, const std::vector<FieldAddress>& fields) {
  return ReadFieldValues(ReadText(path), path == "-" ? "standard input" : path, fields);
}

}  // namespace tarn7::tool
