#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ara/com/internal/skeleton/event.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/common/payload.h"
#include "platform/include/connection.h"
#include "platform/include/message_check.h"

namespace ara::com::internal::vsomeip::skeleton {

/// An offered event over SOME/IP. Each sending serialises the value anew.
template <typename T, typename Descriptor>
class EventImpl : public virtual internal::skeleton::Event<T> {
 public:
  explicit EventImpl(std::uint16_t instanceId) noexcept : instance_id_(instanceId) {}

  void Send(const T& value) override {
    if (common::isEventUndefined(Descriptor::event_id)) {
      common::GetLogger().LogFatal() << "Event id " << Descriptor::event_id << " is undefined";
      common::abort();
    }
    runtime::VSomeIPConnection::instance_.Application()->notify(Descriptor::Service::service_id, instance_id_,
                                                                Descriptor::event_id,
                                                                common::MakePayload(common::ValuePayload(value)));
  }
  std::unique_ptr<T> Allocate() override { return std::make_unique<T>(); }
  void Send(std::unique_ptr<T> sample) override { Send(*sample); }

 protected:
  std::uint16_t InstanceId() const noexcept { return instance_id_; }

 private:
  const std::uint16_t instance_id_;
};

}  // namespace ara::com::internal::vsomeip::skeleton
