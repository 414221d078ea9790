#include <stdexcept>

#include "interfaces/chargetimemanager/chargetimemanager_impl.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_impl.h"
#include "tests/proxy/proxy_fixture.h"
#include "tests/support/hex.h"

namespace {

using namespace proxy_test;
using kro::services::chargetimemanager::chargetimemanager_binding::vsomeip::ChargeTimeManagerImpl;
using kro::services::routebasedconsumption::routebasedconsumption_binding::vsomeip::RouteBasedConsumptionImpl;
using Calculations = std::vector<kro::services::chargetimemanager::datatypes::DT_chargeTimeCalculations_struct>;
using ::testing::ElementsAre;

class SetterTest : public ProxyTest {};

TEST_F(SetterTest, SendsTheValueAndYieldsWhatTheServiceReportsBack) {
  ChargeTimeManagerImpl binding(kInstance);
  auto& field = binding.GetchargeTimeCalculations();
  Calculations wanted(1);
  wanted[0].member6 = true;
  application_.TakeCalls();
  auto future = field.Set(wanted);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre("send 60e8 7 4011 2 1"));
  const auto request = TakeRequest();
  const auto payload = request->get_payload();
  EXPECT_EQ(std::vector<unsigned char>(payload->get_data(), payload->get_data() + payload->get_length()),
            support::Bytes("00000007 00000003 0006 01"));
  application_.Deliver(support::ResponseTo(request, "0000000a 00000006 2000 00000009"));
  EXPECT_EQ(future.get().at(0).member0, 9U);
}

TEST_F(SetterTest, GivesTheGetterBackWhenTheSetterFails) {
  application_.on_call = [](const std::string& call) {
    if (call == "register_message_handler 60e8 7 4011") {
      throw std::runtime_error("the setter fails");
    }
  };
  EXPECT_THROW(ChargeTimeManagerImpl{kInstance}, std::runtime_error);
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("request_service 60e8 7 2", "register_message_handler 60e8 7 4010",
                          "unregister_message_handler 60e8 7 4010", "release_service 60e8 7"));
}

// The two interfaces share method ids; what tells their messages apart is the service and its version.
TEST_F(SetterTest, AResponseOfOneInterfaceIsNotTakenForAnothers) {
  RouteBasedConsumptionImpl consumption(kInstance);
  EnergySystemImpl energy(kInstance);
  auto status = consumption.Getstatus().Get();
  const auto request = TakeRequest();
  const auto residual = consumption.GetresidualEnergies().Get();
  EXPECT_EQ(TakeRequest()->get_method(), 0x40B0);

  const auto foreign = support::ResponseTo(request, "00000007 00000003 0001 01");
  foreign->set_service(kService);
  application_.Deliver(foreign);
  EXPECT_FALSE(status.is_ready()) << "energysystem's handler has no such call";
  application_.Deliver(support::ResponseTo(request, "00000007 00000003 0001 01"));
  EXPECT_EQ(status.get().at(0).member1, true);
}

}  // namespace
