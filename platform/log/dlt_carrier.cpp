#include <algorithm>
#include <cstdint>
#include <dlt/dlt_user.h>
#include <limits>

#include "platform/log/carrier.h"

namespace ara::log {

namespace {

class DltCarrier final : public Carrier {
 public:
  DltCarrier(const std::string& contextId, const std::string& description) {
    // Fails when the application has registered itself before, which is as good.
    static const bool registered = [] {
      constexpr std::uint32_t kExitDelay = 500;  // ms; without it a process ends ten seconds late where no daemon runs
      dlt_set_resend_timeout_atexit(kExitDelay);
      return dlt_register_app("TRN7", "tarn7 vehicle services") == DLT_RETURN_OK;
    }();
    static_cast<void>(registered);
    dlt_register_context(&context_, contextId.c_str(), description.c_str());
  }

  void Write(LogLevel level, const std::string& text) override {
    DltContextData entry;
    // Our levels have DLT's numbers.
    if (dlt_user_log_write_start(&context_, &entry, static_cast<DltLogLevelType>(level)) > 0) {
      const std::size_t length = std::min<std::size_t>(text.size(), std::numeric_limits<std::uint16_t>::max());
      dlt_user_log_write_sized_utf8_string(&entry, text.data(), static_cast<std::uint16_t>(length));
      dlt_user_log_write_finish(&entry);
    }
  }

 private:
  DltContext context_{};  // never unregistered: loggers live until the process ends
};

}  // namespace

std::unique_ptr<Carrier> MakeDltCarrier(const std::string& contextId, const std::string& description) {
  return std::make_unique<DltCarrier>(contextId, description);
}

}  // namespace ara::log
