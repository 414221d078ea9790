#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/model/value_type.h"
#include "tools/tarn7/server/offered_service.h"
#include "tools/tarn7/values/json.h"
#include "tools/tarn7/values/payload_check.h"

namespace tarn7::tool {

/// One field of an interface, whatever its value type. Immutable.
class Field {
 public:
  struct Identifiers {
    std::uint16_t getter;
    std::uint16_t setter;  ///< 0 where the field has none
    std::uint16_t event;
    std::uint16_t eventgroup;
  };

  Field(std::string name, Identifiers ids, ValueType type)
      : name_(std::move(name)), ids_(ids), type_(std::move(type)) {}
  Field(const Field&) = delete;
  Field& operator=(const Field&) = delete;
  virtual ~Field() = default;

  const std::string& Name() const noexcept { return name_; }
  const Identifiers& Ids() const noexcept { return ids_; }
  const ValueType& Type() const noexcept { return type_; }
  bool HasSetter() const noexcept { return ids_.setter != 0; }

  /// Throws PayloadError for bytes that are no value of the field. Says what Decode passes over.
  virtual PayloadNotes Check(const unsigned char* data, std::size_t size) const = 0;
  /// Throws PayloadError for bytes that are no value of the field.
  virtual Json Decode(const unsigned char* data, std::size_t size) const = 0;
  /// Throws ValueError, which names the place, for JSON that is no value of the field.
  virtual std::vector<unsigned char> Encode(const Json& value) const = 0;
  /// Access to the field through a proxy binding of its interface, which must be one that the library consumes.
  virtual std::unique_ptr<FieldClient> Connect(
      std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding) const = 0;

 private:
  std::string name_;
  Identifiers ids_;
  ValueType type_;
};

/// One interface of the library, which is its client (consumed) or its server (provided).
struct Interface {
  std::string name;
  std::uint16_t ara_service_id;
  std::uint16_t service_id;
  std::uint8_t major_version;
  std::uint32_t minor_version;
  std::vector<std::unique_ptr<const Field>> fields;
  /// Makes a skeleton of one instance. Empty for an interface that is consumed.
  std::function<std::unique_ptr<OfferedService>(std::uint16_t instance)> make_skeleton;

  bool IsProvided() const noexcept { return make_skeleton != nullptr; }
  const char* Role() const noexcept { return IsProvided() ? "provided" : "consumed"; }
};

}  // namespace tarn7::tool
