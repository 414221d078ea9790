#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unistd.h>

#include "interfaces/chargetimemanager/chargetimemanager_descriptors.h"
#include "interfaces/energysystem/energysystem_descriptors.h"
#include "tests/support/child_process.h"

/// What the provider's process and the benchmarks agree on.
namespace benchmarks {

using kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors::chargeTimeCalculations;
using SmallField = kro::services::energysystem::energysystem_binding::vsomeip::descriptors::highVoltageBatteries;
using LargeField = kro::services::energysystem::energysystem_binding::vsomeip::descriptors::lowVoltageBatteries;

inline constexpr std::size_t kSmallRecords = 1;   // in a value of SmallField
inline constexpr std::size_t kLargeRecords = 30;  // in a value of LargeField; still one datagram

/// A method of either service, beside its fields': what it is called with is notified as the new value of SmallField,
/// or of chargeTimeCalculations. There is no response.
inline constexpr std::uint16_t kNotifyMethod = 0x0001;

/// A field of chargeTimeCalculations' service that is nothing but bytes, and the method that notifies a new value of
/// it: as many bytes as the request's payload says, a number of this machine. There is no response.
inline constexpr std::uint16_t kBytesEvent = 0x8F01;
inline constexpr std::uint16_t kNotifyBytesMethod = 0x0002;

/// The provider's process. Everything is offered twice: at Instance() for the product, at BareInstance() for the bare
/// interface, since a process has one handler for each method of an instance.
class Provider {
 public:
  /// `program` is the provider. Must come before this process is bound to a processor, which the provider would
  /// inherit.
  explicit Provider(const char* program) : process_(program) { process_.Tell(std::to_string(instance_)); }

  std::uint16_t Instance() const { return instance_; }
  std::uint16_t BareInstance() const { return static_cast<std::uint16_t>(instance_ + 1); }

 private:
  // Apart from other runs on the same machine.
  const std::uint16_t instance_ = static_cast<std::uint16_t>(0x2000 + 2 * (getpid() % 0x4000));
  support::ChildProcess process_;
};

}  // namespace benchmarks
