#pragma once

#include "ara/com/internal/vsomeip/common/service_descriptor.h"

/// The identity of the chargetimemanager interface.
namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 22592, SOME/IP service 0x60E8, version 2.0.
struct Service : common::ServiceDescriptor<22592, 0x60E8, 2, 0> {
  static constexpr const char* name = "chargetimemanager";
  static constexpr const char* meta_model_path = "/kro/services/chargetimemanager/ChargeTimeManager";
};
}  // namespace internal

}  // namespace kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors
