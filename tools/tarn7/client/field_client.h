#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "ara/com/subscription_state.h"
#include "platform/include/e2e_status_handler.h"
#include "tools/tarn7/client/sample_queue.h"
#include "tools/tarn7/values/payload.h"

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
  /// Asks for a new value, which is one of the field.
  virtual void StartSet(const Payload& value, std::function<void()> answered) = 0;
  /// What the answer holds. Throws CommandError (kCallFailed) where it is an error.
  virtual Payload TakeAnswer() = 0;

  /// Follows the field; `arrived` is called after each sample that arrived.
  virtual void Subscribe(std::function<void()> arrived) = 0;
  virtual FieldState GetState() const = 0;
  /// The oldest sample that waits: a value of the field.
  std::optional<Payload> TakeSample() { return samples_->Take(); }
  /// How many samples went unseen, because too many waited.
  std::uint64_t CountDropped() const { return samples_->CountDropped(); }

 protected:
  const std::shared_ptr<SampleQueue> samples_ = std::make_shared<SampleQueue>();  // shared with the stack's handlers
};

}  // namespace tarn7::tool
