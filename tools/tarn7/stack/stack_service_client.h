#pragma once

#include <cstdint>
#include <memory>

#include "tools/tarn7/client/service_client.h"
#include "tools/tarn7/stack/stack_application.h"

namespace tarn7::tool {

/// Access straight on the stack, to any interface.
class StackServiceClient final : public ServiceClient {
 public:
  StackServiceClient(Loop& loop, const Interface& interface, std::uint16_t instance, Changed changed = {});

  std::unique_ptr<FieldClient> Connect(const Field& field) override;

  const Interface& GetInterface() const noexcept { return interface_; }
  std::uint16_t Instance() const noexcept { return instance_; }
  StackApplication& Application() noexcept { return application_; }

 private:
  const Interface& interface_;
  const std::uint16_t instance_;
  StackApplication application_;  // last: its handlers are gone before anything else here is
};

}  // namespace tarn7::tool
