#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ara/com/internal/vsomeip/common/field_descriptor.h"
#include "core_types/com_exception.h"
#include "tools/tarn7/error.h"
#include "tools/tarn7/server/offered_service.h"
#include "tools/tarn7/values/from_json.h"

namespace tarn7::tool {

/// Offers an interface through the library's own skeleton. Getters are answered with the value as it stands.
template <typename InterfaceDescriptor>
class SkeletonService final : public OfferedService {
 public:
  explicit SkeletonService(std::uint16_t instance) : skeleton_({std::to_string(instance)}) {
    ara::com::internal::vsomeip::common::ForEachType(typename InterfaceDescriptor::Fields{}, [this](auto descriptor) {
      using Descriptor = decltype(descriptor);
      auto& field = skeleton_.*Descriptor::skeleton_field;
      field.ServeCurrentValue();
      updates_.push_back([&field](const Json& value) {
        try {
          field.Update(FromJson<typename Descriptor::ValueType>(value));
        } catch (const std::length_error& error) {
          throw ValueError(std::string(Descriptor::name) + ": " + error.what());
        }
      });
    });
  }

  void Update(std::size_t field, const Json& value) override { updates_[field](value); }

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
  typename InterfaceDescriptor::Skeleton skeleton_;
  std::vector<std::function<void(const Json&)>> updates_;  // in the interface's order
};

}  // namespace tarn7::tool
