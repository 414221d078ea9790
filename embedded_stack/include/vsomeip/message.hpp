#pragma once

#include <cstdint>
#include <memory>

#include "vsomeip/message_base.hpp"

namespace vsomeip_v3 {

class payload;

// A SOME/IP message. Created by the runtime; not synchronized, so hands off after send() until it returned.
class VSOMEIP_IMPORT_EXPORT message : virtual public message_base {
 public:
  ~message() override = default;

  // Never null.
  virtual std::shared_ptr<payload> get_payload() const = 0;
  virtual void set_payload(std::shared_ptr<payload> payload) = 0;

  // The end-to-end check's verdict. This stack checks nothing itself: 0 and valid unless set otherwise.
  virtual std::uint8_t get_check_result() const = 0;
  virtual void set_check_result(std::uint8_t check_result) = 0;
  virtual bool is_valid_crc() const = 0;
};

}  // namespace vsomeip_v3
