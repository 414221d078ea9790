#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <vsomeip/vsomeip.hpp>

#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/stack/stack_service_client.h"

namespace tarn7::tool {

/// Access to a field straight on the stack, with payloads as they come.
class StackFieldClient final : public FieldClient {
 public:
  /// `service` lives longer.
  StackFieldClient(StackServiceClient& service, const Field& field);

  void StartGet(std::function<void()> answered) override;
  void StartSet(const Payload& value, std::function<void()> answered) override;
  /// The bytes as they came, whatever they are.
  Payload TakeAnswer() override;

  /// A sample that is no value of the field is reported on standard error and passed over.
  void Subscribe(std::function<void()> arrived) override;
  FieldState GetState() const override;

 private:
  struct Inbox;

  void Send(std::uint16_t method, const Payload& payload, std::function<void()> answered);
  std::string Name() const;

  StackServiceClient& service_;
  const Field& field_;
  std::shared_ptr<Inbox> inbox_;  // shared with the stack's handlers
};

}  // namespace tarn7::tool
