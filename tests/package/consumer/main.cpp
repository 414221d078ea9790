// An application outside of the project: it has the installed headers and libraries, and no vehicle.
#ifndef TARN7_SHORT_SCALAR_IS_FATAL
#error "the package must say how the library reads short scalars: the headers decide by it, too"
#endif

#include <cstdint>
#include <iostream>
#include <vector>

#include "interfaces/chargetimemanager/chargetimemanager_proxy.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"

namespace {

using namespace kro::services;
using Value = std::vector<chargetimemanager::datatypes::DT_chargeTimeCalculations_struct>;
namespace common = ara::com::internal::vsomeip::common;

constexpr const char* kNobodysInstance = "62007";

bool ValueSurvivesTheWire() {
  Value value(1);
  value[0].member0 = 42U;
  value[0].member5 = std::vector<std::uint16_t>{1, 2};
  common::ByteVector bytes;
  common::SequenceContainerSerializer<Value>(value).pushbackTo(bytes);
  const Value read = common::DeserializeFieldValue<Value>(bytes.data(), bytes.size());
  return read.size() == 1 && read[0].member0 == value[0].member0 && read[0].member5 == value[0].member5 &&
         !read[0].member1.has_value();
}

// A proxy may be there before its service: it waits.
bool ProxyWaitsForItsService() {
  using energysystem::proxy::EnergySystemProxy;
  EnergySystemProxy energySystem{EnergySystemProxy::HandleType(kNobodysInstance)};
  energySystem.notifications.Subscribe(4);
  const auto samples = energySystem.notifications.GetNewSamples([](auto) {});
  return EnergySystemProxy::FindService(kNobodysInstance).empty() && samples && samples.value() == 0 &&
         energySystem.notifications.GetSubscriptionState() == ara::com::SubscriptionState::kSubscriptionPending;
}

bool Check(const char* what, bool good) {
  std::cout << (good ? "ok: " : "FAILED: ") << what << std::endl;
  return good;
}

}  // namespace

int main() {
  const bool good = Check("a value survives the wire", ValueSurvivesTheWire()) &&
                    Check("a proxy waits for its service", ProxyWaitsForItsService());
  return good ? 0 : 1;
}
