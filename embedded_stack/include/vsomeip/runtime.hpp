#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vsomeip/export.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

class application;
class message;
class payload;

// The factory of everything. One per process; every operation may be called from any thread.
class VSOMEIP_IMPORT_EXPORT runtime {
 public:
  static std::shared_ptr<runtime> get();

  virtual ~runtime() = default;

  // The application belongs to the caller; the runtime only remembers it by name, weakly. An empty name means the
  // one in VSOMEIP_APPLICATION_NAME. A name that is taken gets a suffix. `path` names a configuration file and
  // goes before VSOMEIP_CONFIGURATION.
  virtual std::shared_ptr<application> create_application(const std::string& name = "") = 0;
  virtual std::shared_ptr<application> create_application(const std::string& name, const std::string& path) = 0;

  // Null if there is none of this name, or none any more.
  virtual std::shared_ptr<application> get_application(const std::string& name) const = 0;
  virtual void remove_application(const std::string& name) = 0;

  virtual std::shared_ptr<message> create_message(bool reliable = false) const = 0;
  virtual std::shared_ptr<message> create_request(bool reliable = false) const = 0;
  virtual std::shared_ptr<message> create_notification(bool reliable = false) const = 0;

  // The response knows where its request came from: a response can only be sent if it was made here.
  virtual std::shared_ptr<message> create_response(const std::shared_ptr<message>& request) const = 0;

  virtual std::shared_ptr<payload> create_payload() const = 0;
  virtual std::shared_ptr<payload> create_payload(const byte_t* data, std::uint32_t size) const = 0;
  virtual std::shared_ptr<payload> create_payload(const std::vector<byte_t>& data) const = 0;
};

}  // namespace vsomeip_v3
