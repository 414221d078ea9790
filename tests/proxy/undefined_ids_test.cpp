#include "ara/com/internal/vsomeip/proxy/vsomeip_event_impl.h"
#include "ara/com/internal/vsomeip/proxy/vsomeip_method_impl_delegate.h"
#include "tests/proxy/proxy_fixture.h"

// An interface whose configuration lacks an event or a method: whoever uses it ends the process.
namespace {

using namespace proxy_test;

template <std::uint16_t Id>
struct Incomplete {
  using Service = kro::services::energysystem::energysystem_binding::vsomeip::descriptors::internal::Service;

  static constexpr std::uint16_t event_id = Id;
  static constexpr std::uint16_t event_groups[1] = {Id};
  static constexpr std::uint16_t service_id = kService;
  static constexpr std::uint16_t method_id = Id;
  static constexpr std::uint8_t interface_version = 4;
};

template <std::uint16_t Id>
void ExpectTheProcessToEnd() {
  using Event = ara::com::internal::vsomeip::proxy::EventImpl<Incomplete<Id>, Value>;
  using Method = ara::com::internal::vsomeip::proxy::MethodImplDelegate<Incomplete<Id>, Value>;
  const std::string event = "Event id " + std::to_string(Id) + " is undefined";
  EXPECT_DEATH(Event(kInstance).Subscribe(1), event);
  EXPECT_DEATH(Event(kInstance).Unsubscribe(), event);
  EXPECT_DEATH(Method(kInstance).startCall(), "Method id " + std::to_string(Id) + " is undefined");
}

TEST(UndefinedIdsDeathTest, EndTheProcess) {
  ExpectTheProcessToEnd<0>();
  ExpectTheProcessToEnd<0xFFFF>();
}

}  // namespace
