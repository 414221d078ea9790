#include "tools/tarn7/library/offered_service.h"

#include <map>
#include <stdexcept>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "core_types/com_exception.h"
#include "interfaces/interface_list.h"
#include "serialization/deserializer.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

namespace {

using ara::com::internal::vsomeip::common::ForEachType;

/// Gives a field a value through the library's own codec.
template <typename InterfaceDescriptor, typename Descriptor>
void UpdateTyped(typename InterfaceDescriptor::Skeleton& skeleton, const Payload& value) {
  (skeleton.*Descriptor::skeleton_field)
      .Update(common::DeserializeFieldValue<typename Descriptor::ValueType>(value.data(), value.size()));
}

/// Offers an interface through the library's own skeleton. Getters are answered with the value as it stands.
template <typename InterfaceDescriptor>
class SkeletonService final : public OfferedService {
 public:
  explicit SkeletonService(std::uint16_t instance) : skeleton_({std::to_string(instance)}) {
    ForEachType(typename InterfaceDescriptor::Fields{}, [this](auto descriptor) {
      using Descriptor = decltype(descriptor);
      (skeleton_.*Descriptor::skeleton_field).ServeCurrentValue();
      updates_[Descriptor::name] = &UpdateTyped<InterfaceDescriptor, Descriptor>;
    });
  }

  void Update(const std::string& field, const Payload& value) override {
    try {
      updates_.at(field)(skeleton_, value);
    } catch (const std::length_error& error) {
      throw ValueError(field + ": " + error.what());
    }
  }

  void Offer() override {
    try {
      skeleton_.OfferService();
    } catch (const ara::com::IllegalStateException& error) {
      throw ValueError(error.what());
    } catch (const std::length_error& error) {
      throw ValueError(std::string("the value of a field cannot be sent: ") + error.what());
    }
  }

 private:
  using Skeleton = typename InterfaceDescriptor::Skeleton;

  Skeleton skeleton_;
  std::map<std::string, void (*)(Skeleton&, const Payload&)> updates_;
};

}  // namespace

std::unique_ptr<OfferedService> MakeSkeleton(const Interface& interface, std::uint16_t instance) {
  std::unique_ptr<OfferedService> service;
  ForEachType(kro::services::ProvidedInterfaces{}, [&](auto descriptor) {
    using Descriptor = decltype(descriptor);
    if (interface.name == Descriptor::Service::name) {
      service = std::make_unique<SkeletonService<Descriptor>>(instance);
    }
  });
  if (service == nullptr) {
    throw std::logic_error("the library has no skeleton of " + interface.name);
  }
  return service;
}

}  // namespace tarn7::tool
