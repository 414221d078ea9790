#pragma once

#include "vsomeip/enumeration_types.hpp"
#include "vsomeip/export.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

// The header of a SOME/IP message, and the instance, which is not on the wire: it follows from the endpoint.
class VSOMEIP_IMPORT_EXPORT message_base {
 public:
  virtual ~message_base() = default;

  virtual message_t get_message() const = 0;
  virtual void set_message(message_t message) = 0;
  virtual service_t get_service() const = 0;
  virtual void set_service(service_t service) = 0;
  virtual instance_t get_instance() const = 0;
  virtual void set_instance(instance_t instance) = 0;
  virtual method_t get_method() const = 0;
  virtual void set_method(method_t method) = 0;

  // What the length field says: the payload and the 8 header bytes behind the field.
  virtual length_t get_length() const = 0;

  // Client and session id. Those of a request are assigned by application::send(), so read them after it.
  virtual request_t get_request() const = 0;
  virtual client_t get_client() const = 0;
  virtual void set_client(client_t client) = 0;
  virtual session_t get_session() const = 0;
  virtual void set_session(session_t session) = 0;

  virtual protocol_version_t get_protocol_version() const = 0;
  virtual interface_version_t get_interface_version() const = 0;
  virtual void set_interface_version(interface_version_t version) = 0;
  virtual message_type_e get_message_type() const = 0;
  virtual void set_message_type(message_type_e type) = 0;
  virtual return_code_e get_return_code() const = 0;
  virtual void set_return_code(return_code_e code) = 0;

  // Kept for the caller; this stack sends everything over UDP.
  virtual bool is_reliable() const = 0;
  virtual void set_reliable(bool is_reliable) = 0;

  // True for the notification that brings a field's value to a new subscriber, where the stack can tell.
  virtual bool is_initial() const = 0;
  virtual void set_initial(bool is_initial) = 0;
};

}  // namespace vsomeip_v3
