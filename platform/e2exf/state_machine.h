#pragma once

#include <array>
#include <cstddef>

#include "platform/include/e2e_status_handler.h"

namespace ara::com::e2exf {

/// Judges how far the data of one event can be trusted by the last checks of its messages: good and bad ones are
/// counted in a window whose size depends on the state. Starts without data.
///
/// Only kOk counts as good and only kError as bad; any other status takes a place in the window and counts as neither.
/// Not synchronized.
class StateMachine {
 public:
  /// What one state asks of the last `window` checks.
  struct Thresholds {
    std::size_t window;      ///< how many checks are looked back at
    std::size_t min_ok;      ///< at least so many good ones make the data valid, or keep it so
    std::size_t max_errors;  ///< and at most so many bad ones
  };

  // Becoming valid is quick: one good message after the first will do. Staying valid forgives two bad messages in ten
  // checks, but wants a good one among them. Coming back from invalid takes two good ones in five, and no bad one.
  static constexpr Thresholds kInit{5, 1, 1};
  static constexpr Thresholds kValid{10, 1, 2};
  static constexpr Thresholds kInvalid{5, 2, 0};

  /// Enters one check and returns the state that it leaves.
  SMState Check(ProfileCheckStatus status) noexcept;
  SMState State() const noexcept { return state_; }

 private:
  static constexpr std::size_t kMaxWindow = 10;
  static_assert(kInit.window <= kMaxWindow && kValid.window <= kMaxWindow && kInvalid.window <= kMaxWindow);
  // Otherwise a state could be left at once by the checks that led into it.
  static_assert(kValid.min_ok <= kInit.min_ok && kInit.min_ok <= kInvalid.min_ok && kValid.min_ok >= 1);
  static_assert(kInvalid.max_errors <= kInit.max_errors && kInit.max_errors <= kValid.max_errors);

  void Remember(ProfileCheckStatus status, std::size_t window) noexcept;
  std::size_t Count(ProfileCheckStatus status, std::size_t window) const noexcept;
  bool Meets(const Thresholds& thresholds) const noexcept;

  SMState state_ = SMState::kNoData;
  std::array<ProfileCheckStatus, kMaxWindow> latest_{};  // the newest first; only size_ of them are meant
  std::size_t size_ = 0;
};

}  // namespace ara::com::e2exf
