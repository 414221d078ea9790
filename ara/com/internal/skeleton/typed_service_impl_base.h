#pragma once

#include <string>

#include "ara/com/internal/skeleton/offer_gate.h"
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
  /// IllegalStateException, before anything is offered, for the first field without one; and where it is
  /// called by something that this thread's own offer or withdrawal calls. Whatever goes wrong, nothing stays offered.
  template <typename Interface>
  void Offer() {
    static_assert(ara::core::internal::kIsPermutation<typename Interface::CheckOrder, typename Interface::Fields>,
                  "CheckOrder must list each of the interface's Fields once");
    ara::core::internal::ForEachType(typename Interface::CheckOrder{},
                                     [this](auto field) { this->template RequireValue<Interface, decltype(field)>(); });
    Runtime::Init();
    if (!gate_.BeginOffer()) {
      throw IllegalStateException("OfferService() called while this thread is offering or withdrawing the service");
    }
    try {
      for (const InstanceIdentifier& instance : GetInstanceIdentifiers()) {
        Runtime::OfferService(*this, Interface::Service::ara_service_id, instance);
      }
    } catch (...) {
      Withdraw<Interface>();
      throw;
    }
    if (!gate_.EndOffer()) {
      Withdraw<Interface>();
      throw IllegalStateException("The offer was withdrawn while it was being made");
    }
  }

  /// Afterwards nothing is offered, and no get handler runs on another thread: only a get handler does not wait for the
  /// others.
  template <typename Interface>
  void StopOffer() {
    if (!gate_.BeginWithdrawal()) {
      return;
    }
    Withdraw<Interface>();
    if (!GetHandlerScope::IsInside()) {
      ara::core::internal::ForEachType(typename Interface::Fields{}, [this](auto field) {
        (static_cast<Skeleton*>(this)->*decltype(field)::skeleton_field).WaitForGetHandlers();
      });
    }
  }

 private:
  // With the gate.
  template <typename Interface>
  void Withdraw() {
    Runtime::StopOfferService(*this, Interface::Service::ara_service_id);
    gate_.EndWithdrawal();
  }

  template <typename Interface, typename Descriptor>
  void RequireValue() const {
    if (!(static_cast<const Skeleton*>(this)->*Descriptor::skeleton_field).HasValue()) {
      throw IllegalStateException(std::string("Attempt to offer service \"") + Interface::Service::meta_model_path +
                                  "\" with uninitialized field \"" + Descriptor::name + "\"");
    }
  }

  OfferGate gate_;
};

}  // namespace ara::com::internal::skeleton
