#pragma once

#include <cstdint>

#include "platform/include/visibility.h"

namespace ara::com::e2exf {

/// The outcome of the end-to-end check of one message.
enum class ProfileCheckStatus : std::uint8_t {
  kOk = 0,
  kRepeated = 1,
  kWrongSequence = 2,
  kError = 3,
  kNotAvailable = 4,
  kNoNewData = 5,
};

/// How far the data of an event can be trusted, judged over the last checks.
enum class SMState : std::uint8_t { kValid = 0, kNoData = 1, kInit = 2, kInvalid = 3, kStateMDisabled = 4 };

struct CheckResult {
  ProfileCheckStatus status = ProfileCheckStatus::kNotAvailable;
  SMState state = SMState::kNoData;
};

/// Follows the end-to-end state of every event. May be called from any thread.
class ARA_PLATFORM_API StatusHandler {
 public:
  /// Enters one check into the state of (service, instance, event) and returns where that leaves it.
  static CheckResult HandleCheckStatus(std::uint16_t serviceId, std::uint16_t instanceId, std::uint16_t eventId,
                                       ProfileCheckStatus status);
};

}  // namespace ara::com::e2exf
