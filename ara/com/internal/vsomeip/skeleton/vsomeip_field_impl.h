#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ara/com/internal/skeleton/field.h"
#include "ara/com/internal/vsomeip/skeleton/getter_state.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_event_impl.h"

namespace ara::com::internal::vsomeip::skeleton {

/// An offered field over SOME/IP: its notifier event and its getter.
template <typename T, typename Descriptor>
class FieldImpl : public EventImpl<T, Descriptor>, public virtual internal::skeleton::Field<T> {
 public:
  using Getter = GetterState<T, Descriptor>;

  explicit FieldImpl(std::uint16_t instanceId) : EventImpl<T, Descriptor>(instanceId) {}
  ~FieldImpl() override { getter_->Close(); }
  FieldImpl(const FieldImpl&) = delete;
  FieldImpl& operator=(const FieldImpl&) = delete;

  void RegisterGetHandler(internal::skeleton::GetHandler<T> handler) override {
    getter_->RegisterGetHandler(std::move(handler));
  }
  void Update(const T& value) override { this->Send(value); }

  /// Validates a request, asks the get handler and sends what it yields. Throws IllegalStateException without a
  /// handler.
  void handleGet(const std::shared_ptr<::vsomeip::message>& request) const { getter_->handleGet(request); }

  /// What the platform's handler holds, weakly.
  const std::shared_ptr<Getter>& GetGetter() const noexcept { return getter_; }

 private:
  std::shared_ptr<Getter> getter_ = std::make_shared<Getter>();
};

}  // namespace ara::com::internal::vsomeip::skeleton
