#include <stdexcept>

#include "platform/include/instance_identifier.h"
#include "registry/proxy_factory_impl.h"
#include "registry/service_mapping.h"
#include "tests/proxy/proxy_fixture.h"

namespace {

using namespace proxy_test;
using ara::com::internal::vsomeip::runtime::AraComVSomeIPServiceMapping;
using ara::com::internal::vsomeip::runtime::ProxyFactoryImpl;
using ara::com::internal::vsomeip::runtime::ServiceIdRegistry;
using ara::com::internal::vsomeip::runtime::VSomeIPServiceIdRegistry;
using ara::com::internal::vsomeip::runtime::VSomeIPServiceMapping;
using ::testing::ElementsAre;

class BindingTest : public ProxyTest {};

TEST_F(BindingTest, RequestsTheServiceBeforeAnythingElseAndReleasesItLast) {
  auto binding = std::make_unique<EnergySystemImpl>(kInstance);
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("request_service 6005 7 4", "register_message_handler 6005 7 4020",
                          "register_message_handler 6005 7 4030", "register_message_handler 6005 7 4040",
                          "register_message_handler 6005 7 4010"));
  binding.reset();
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("unregister_message_handler 6005 7 4010", "unregister_message_handler 6005 7 4040",
                          "unregister_message_handler 6005 7 4030", "unregister_message_handler 6005 7 4020",
                          "release_service 6005 7"));
}

TEST_F(BindingTest, GivesEverythingBackWhenItsConstructionFailsHalfWay) {
  application_.on_call = [](const std::string& call) {
    if (call == "register_message_handler 6005 7 4040") {
      throw std::runtime_error("the third field fails");
    }
  };
  EXPECT_THROW(EnergySystemImpl{kInstance}, std::runtime_error);
  EXPECT_THAT(application_.TakeCalls(),
              ElementsAre("request_service 6005 7 4", "register_message_handler 6005 7 4020",
                          "register_message_handler 6005 7 4030", "unregister_message_handler 6005 7 4030",
                          "unregister_message_handler 6005 7 4020", "release_service 6005 7"));
}

TEST_F(BindingTest, TwoBindingsOfOneInstanceShareTheRequest) {
  auto one = std::make_unique<EnergySystemImpl>(kInstance);
  auto other = std::make_unique<EnergySystemImpl>(kInstance);
  application_.TakeCalls();
  one.reset();
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "the other one still needs all of it";
  other.reset();
  EXPECT_EQ(application_.TakeCalls().back(), "release_service 6005 7");
}

TEST_F(BindingTest, TheFactoryMakesABindingPerCallOrNone) {
  ProxyFactoryImpl<EnergySystemImpl> factory(ara::com::InstanceIdentifier("7"));
  const auto one = factory.Create();
  const auto other = factory.Create();
  EXPECT_NE(one, nullptr);
  EXPECT_NE(one, other);

  factory.SetInstanceIdentifier(factory.GetInstanceIdentifier());
  EXPECT_EQ(factory.GetInstanceIdentifier().ToString(), "7");
  application_.TakeCalls();
  factory.SetInstanceIdentifier(ara::com::InstanceIdentifier("no instance"));
  EXPECT_EQ(factory.Create(), nullptr);
  EXPECT_EQ(factory.Create(), nullptr);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
}

TEST_F(BindingTest, ARequestIsDroppedOnce) {
  using ara::com::internal::vsomeip::common::ServiceInstance;
  using ara::com::internal::vsomeip::runtime::VSomeIPConnection;
  VSomeIPConnection::RequestedServiceInstance requested(ServiceInstance{kService, kInstance, 4, 3});
  requested.DropServiceInstance();
  requested.DropServiceInstance();
  EXPECT_TRUE(requested == ServiceInstance());
  EXPECT_THAT(application_.TakeCalls(), ElementsAre("request_service 6005 7 4", "release_service 6005 7"));
}

struct Identity {
  std::uint16_t ara;
  std::uint16_t someip;
  std::uint8_t major;
  std::uint32_t minor;
  bool consumed;
};

TEST_F(BindingTest, TheRegistryKnowsTheFiveServicesByBothIds) {
  const Identity identities[] = {{9235, 24866, 6, 0, false},
                                 {40160, 24687, 1, 1, false},
                                 {56470, 24581, 4, 3, true},
                                 {27103, 24650, 2, 0, true},
                                 {22592, 24808, 2, 0, true}};
  for (const Identity& identity : identities) {
    const auto* const mapping = VSomeIPServiceMapping::GetMappingForServiceId(identity.ara);
    ASSERT_NE(mapping, nullptr) << identity.ara;
    EXPECT_EQ(mapping->GetServiceId(), identity.ara);
    EXPECT_EQ(mapping->GetVSomeIPService(), identity.someip);
    EXPECT_EQ(mapping->GetVSomeIPServiceVersionMajor(), identity.major);
    EXPECT_EQ(mapping->GetVSomeIPServiceVersionMinor(), identity.minor);
    EXPECT_EQ(mapping->GetVSomeIPRequiredServiceVersionMinor(), 0xFFFFFFFFU);
    EXPECT_FALSE(mapping->IsMinimumMinorPolicyEnabled());
    EXPECT_EQ(mapping->GetNumberOfBlacklistedVersions(), 0U);
    EXPECT_NE(mapping->GetBlacklistedVersions(), nullptr);
    const auto mappings = VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(identity.someip);
    ASSERT_EQ(mappings.size(), 1U);
    EXPECT_EQ(&mappings.at(identity.ara).get(), mapping);
  }
  for (const std::uint16_t unknown : {std::uint16_t{0}, std::uint16_t{24581}, std::uint16_t{65535}}) {
    EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(unknown), nullptr);
  }
  EXPECT_TRUE(VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(9235).empty());
}

TEST_F(BindingTest, TheFirstRegisteredLookupThatKnowsAnIdWins) {
  const auto* const psd2 = AraComVSomeIPServiceMapping::GetMappingForServiceId(9235);
  VSomeIPServiceMapping::MultiMapping twice;
  twice.InsertMapping(psd2);
  twice.InsertMapping(psd2);
  EXPECT_EQ(twice.size(), 1U);

  ServiceIdRegistry().push_back([psd2](std::uint16_t) { return psd2; });
  VSomeIPServiceIdRegistry().push_back([twice](std::uint16_t) { return twice; });
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(1), psd2);
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(56470)->GetServiceId(), 56470);
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(1).count(9235), 1U);
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(24581).count(9235), 0U) << "entries are not merged";
  ServiceIdRegistry().pop_back();
  VSomeIPServiceIdRegistry().pop_back();
}

}  // namespace
