#pragma once

#include <string>

#include "ara/com/internal/skeleton/service_impl_base.h"
#include "core_types/com_exception.h"
#include "core_types/type_list.h"
#include "platform/include/runtime.h"

namespace ara::com::internal::skeleton {

/// The part of a skeleton that knows its interface.
template <typename Skeleton>
class TypedServiceImplBase : public ServiceImplBase {
 public:
  void SetMethodCallProcessingMode(MethodCallProcessingMode mode) override {
    ServiceImplBase::SetMethodCallProcessingMode(mode);
  }

 protected:
  using ServiceImplBase::ServiceImplBase;

  /// Checks that each field has a value, in the interface's check order, and offers every instance. Throws
  /// IllegalStateException, before anything is offered, for the first field without one. Whatever else goes wrong,
  /// nothing stays offered.
  template <typename Interface>
  void Offer() {
    ara::core::internal::ForEachType(typename Interface::CheckOrder{},
                                     [this](auto field) { this->template RequireValue<Interface, decltype(field)>(); });
    Runtime::Init();
    try {
      for (const InstanceIdentifier& instance : GetInstanceIdentifiers()) {
        Runtime::OfferService(*this, Interface::Service::ara_service_id, instance);
      }
    } catch (...) {
      StopOffer<Interface>();
      throw;
    }
  }

  template <typename Interface>
  void StopOffer() {
    Runtime::StopOfferService(*this, Interface::Service::ara_service_id);
  }

 private:
  template <typename Interface, typename Descriptor>
  void RequireValue() const {
    if (!(static_cast<const Skeleton*>(this)->*Descriptor::skeleton_field).HasValue()) {
      throw IllegalStateException(std::string("Attempt to offer service \"") + Interface::Service::meta_model_path +
                                  "\" with uninitialized field \"" + Descriptor::name + "\"");
    }
  }
};

}  // namespace ara::com::internal::skeleton
