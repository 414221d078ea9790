#include "platform/e2exf/state_machine.h"

#include <algorithm>

namespace ara::com::e2exf {

SMState StateMachine::Check(ProfileCheckStatus status) noexcept {
  switch (state_) {
    case SMState::kNoData:
      // The first message is only the sign that there is a sender.
      if (status != ProfileCheckStatus::kError && status != ProfileCheckStatus::kNoNewData &&
          status != ProfileCheckStatus::kNotAvailable) {
        state_ = SMState::kInit;
      }
      break;
    case SMState::kInit:
      Remember(status, kInit.window);
      if (Count(ProfileCheckStatus::kError, kInit.window) > kInit.max_errors) {
        state_ = SMState::kInvalid;
      } else if (Meets(kInit)) {
        state_ = SMState::kValid;
      }
      break;
    case SMState::kValid:
      Remember(status, kValid.window);
      if (!Meets(kValid)) {
        state_ = SMState::kInvalid;
      }
      break;
    case SMState::kInvalid:
      Remember(status, kInvalid.window);
      if (Meets(kInvalid)) {
        state_ = SMState::kValid;
      }
      break;
    case SMState::kStateMDisabled:
      break;
  }
  return state_;
}

// Forgets what lies behind the present state's window, so that a wider one does not bring it back.
void StateMachine::Remember(ProfileCheckStatus status, std::size_t window) noexcept {
  std::copy_backward(latest_.begin(), latest_.end() - 1, latest_.end());
  latest_.front() = status;
  size_ = std::min(size_ + 1, window);
}

std::size_t StateMachine::Count(ProfileCheckStatus status, std::size_t window) const noexcept {
  const auto end = latest_.begin() + static_cast<std::ptrdiff_t>(std::min(size_, window));
  return static_cast<std::size_t>(std::count(latest_.begin(), end, status));
}

bool StateMachine::Meets(const Thresholds& thresholds) const noexcept {
  return Count(ProfileCheckStatus::kOk, thresholds.window) >= thresholds.min_ok &&
         Count(ProfileCheckStatus::kError, thresholds.window) <= thresholds.max_errors;
}

}  // namespace ara::com::e2exf
