#pragma once

#include <functional>
#include <vector>

#include "ara/com/subscription_state.h"
#include "platform/include/e2e_status_handler.h"
#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// How it stands with a field that is followed.
struct FieldState {
  ara::com::SubscriptionState subscription = ara::com::SubscriptionState::kSubscriptionPending;
  ara::com::e2exf::ProfileCheckStatus check = ara::com::e2exf::ProfileCheckStatus::kNotAvailable;  ///< last sample's
};

/// Access to one field of one service instance. Used from one thread, one call at a time. What it calls back runs on
/// threads of the SOME/IP stack, until the service client that it is from is destroyed.
class FieldClient {
 public:
  virtual ~FieldClient() = default;

  /// Asks for the value; `answered` is called once when the answer is there, perhaps at once.
  virtual void StartGet(std::function<void()> answered) = 0;
  /// Asks for a new value. Throws ValueError, before anything is sent, for JSON that is no value of the field.
  virtual void StartSet(const Json& value, std::function<void()> answered) = 0;
  /// The value that the answer reports. Throws CommandError (kCallFailed) where it is an error.
  virtual Json TakeAnswer() = 0;

  /// Follows the field; `arrived` is called after each sample that arrived.
  virtual void Subscribe(std::function<void()> arrived) = 0;
  /// The samples that wait, oldest first.
  virtual std::vector<Json> TakeSamples() = 0;
  virtual FieldState GetState() const = 0;
};

}  // namespace tarn7::tool
