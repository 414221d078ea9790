#pragma once

#include <vector>

#include "vsomeip/export.hpp"
#include "vsomeip/primitive_types.hpp"

namespace vsomeip_v3 {

// The bytes behind a message header. Created by the runtime, shared by whoever holds it; not synchronized.
class VSOMEIP_IMPORT_EXPORT payload {
 public:
  virtual ~payload() = default;

  virtual bool operator==(const payload& other) const = 0;

  // The pointers stay valid until the next non-const call other than get_data().
  virtual byte_t* get_data() = 0;
  virtual const byte_t* get_data() const = 0;
  virtual length_t get_length() const = 0;

  virtual void set_data(const byte_t* data, length_t length) = 0;
  virtual void set_data(const std::vector<byte_t>& data) = 0;
  virtual void set_data(std::vector<byte_t>&& data) = 0;

  // Reserves room for `length` bytes; the length stays as it is.
  virtual void set_capacity(length_t length) = 0;
};

}  // namespace vsomeip_v3
