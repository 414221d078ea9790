#pragma once

#include <cstdint>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_field_impl.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "platform/include/method_handler.h"

namespace ara::com::internal::vsomeip::skeleton {

namespace detail {

/// One field of an adapter, with its getter registered for as long as it lives.
template <typename Descriptor>
class AdapterField {
 public:
  explicit AdapterField(std::uint16_t instanceId) : instance_id_(instanceId), impl_(instanceId) {
    using Getter = typename Impl::Getter;
    common::registerMethodHandler(Descriptor::Service::service_id, instance_id_, Descriptor::getter_method_id,
                                  common::WeakMethodHandler(impl_.GetGetter(), &Getter::onRequest), true);
  }
  ~AdapterField() {
    common::unregisterMethodHandler(Descriptor::Service::service_id, instance_id_, Descriptor::getter_method_id, true);
  }
  AdapterField(const AdapterField&) = delete;
  AdapterField& operator=(const AdapterField&) = delete;

  auto& Get() noexcept { return impl_; }

 private:
  using Impl = FieldImpl<typename Descriptor::ValueType, Descriptor>;

  const std::uint16_t instance_id_;
  Impl impl_;
};

/// The fields of an adapter, made in the order of the list and destroyed in reverse.
template <typename Fields>
class AdapterFields;

template <>
class AdapterFields<common::TypeList<>> {
 public:
  explicit AdapterFields(std::uint16_t) noexcept {}

  template <typename Visitor>
  void ForEach(const Visitor&) noexcept {}
};

template <typename First, typename... Rest>
class AdapterFields<common::TypeList<First, Rest...>> {
 public:
  explicit AdapterFields(std::uint16_t instanceId) : first_(instanceId), rest_(instanceId) {}

  /// Calls `visitor` with a descriptor object and the binding field of each field.
  template <typename Visitor>
  void ForEach(const Visitor& visitor) {
    visitor(First{}, first_.Get());
    rest_.ForEach(visitor);
  }

 private:
  AdapterField<First> first_;
  AdapterFields<common::TypeList<Rest...>> rest_;
};

}  // namespace detail

/// The SOME/IP binding of one offered instance of an interface. It registers the getters, attaches itself to the
/// skeleton, offers the service and its events and sends every field's value; its destructor undoes all of it. Made and
/// destroyed by the runtime, on the thread that offers or withdraws.
template <typename Skeleton, typename Interface>
class ServiceAdapter : public ServiceImplBase {
  static_assert(common::HasDistinctIds(typename Interface::Fields{}), "two of the interface's fields share an id");

 public:
  using SkeletonType = Skeleton;

  // Delegating makes the destructor clean up when a step of the body throws.
  ServiceAdapter(Skeleton& skeleton, std::uint16_t instanceId) : ServiceAdapter(skeleton, instanceId, FieldsOnly{}) {
    Connect(skeleton);
    OfferService(Service::service_id, instanceId, Service::major_version, Service::minor_version);
    fields_.ForEach([&](auto descriptor, auto&) {
      using Descriptor = decltype(descriptor);
      OfferEvent(Service::service_id, instanceId, Descriptor::event_id, Descriptor::event_groups, true,
                 EpsilonChange());
    });
    SendInitialNotification(skeleton);
  }

  ~ServiceAdapter() override {
    fields_.ForEach([&](auto descriptor, auto&) {
      StopOfferField(Service::service_id, InstanceId(), decltype(descriptor)::event_id);
    });
    StopOfferService(Service::service_id, InstanceId());
    Disconnect(dynamic_cast<Skeleton&>(GetService()));
  }

  /// Attaches this binding and its fields: they take over the skeleton's processing mode and get handlers.
  void Connect(Skeleton& skeleton) {
    skeleton.Attach(*this);
    SetMethodCallProcessingMode(skeleton.GetMethodCallProcessingMode());
    fields_.ForEach(
        [&](auto descriptor, auto& field) { (skeleton.*decltype(descriptor)::skeleton_field).Attach(field); });
  }
  /// Detaches what Connect attached.
  void Disconnect(Skeleton& skeleton) {
    skeleton.Detach(*this);
    fields_.ForEach(
        [&](auto descriptor, auto& field) { (skeleton.*decltype(descriptor)::skeleton_field).Detach(field); });
  }
  /// Notifies the value of every field.
  void SendInitialNotification(Skeleton& skeleton) {
    fields_.ForEach(
        [&](auto descriptor, auto&) { (skeleton.*decltype(descriptor)::skeleton_field).SendCurrentValue(); });
  }

 private:
  using Service = typename Interface::Service;
  struct FieldsOnly {};

  ServiceAdapter(Skeleton& skeleton, std::uint16_t instanceId, FieldsOnly)
      : ServiceImplBase(skeleton, instanceId), fields_(instanceId) {}

  detail::AdapterFields<typename Interface::Fields> fields_;
};

}  // namespace ara::com::internal::vsomeip::skeleton
