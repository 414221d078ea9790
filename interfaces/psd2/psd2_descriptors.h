#pragma once

#include "ara/com/internal/vsomeip/common/service_descriptor.h"

/// The identity of the psd2 interface.
namespace kro::services::psd2::psd2_binding::vsomeip::descriptors {

namespace common = ara::com::internal::vsomeip::common;

namespace internal {
/// `ara::com` service 9235, SOME/IP service 0x6122, version 6.0.
struct Service : common::ServiceDescriptor<9235, 0x6122, 6, 0> {
  static constexpr const char* name = "psd2";
  static constexpr const char* meta_model_path = "/kro/services/psd2/Psd2";
};
}  // namespace internal

}  // namespace kro::services::psd2::psd2_binding::vsomeip::descriptors
