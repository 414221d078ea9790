// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include "ara/com/internal/vsomeip/skeleton/service_adapter.h"
#include "core_types/visibility.h"
#include "interfaces/psd2/psd2_descriptors.h"

namespace kro::services::psd2::psd2_binding::vsomeip {

/// Serves one offered instance over SOME/IP.
class TARN7_EXPORT Psd2ServiceAdapter final
    : public ara::com::internal::vsomeip::skeleton::ServiceAdapter<skeleton::Psd2Skeleton, descriptors::Interface> {
 public:
  Psd2ServiceAdapter(skeleton::Psd2Skeleton& skeleton, std::uint16_t instanceId);
  ~Psd2ServiceAdapter() override;
};

}  // namespace kro::services::psd2::psd2_binding::vsomeip
