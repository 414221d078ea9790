#include <functional>
#include <stdexcept>
#include <tuple>

#include "registry/lookup_registry.h"
#include "registry/service_mapping.h"
#include "registry/service_mapping_impl.h"
#include "tests/proxy/proxy_fixture.h"

namespace {

using namespace proxy_test;
using ara::com::internal::vsomeip::runtime::AraComVSomeIPServiceMapping;
using ara::com::internal::vsomeip::runtime::LookUp;
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

TEST_F(BindingTest, AFactoryMakesIndependentBindingsAndNoneOfAForeignIdentifier) {
  ara::com::internal::vsomeip::runtime::ProxyFactoryImpl<EnergySystemImpl> factory{ara::com::InstanceIdentifier("7")};
  auto one = factory.Create();
  auto other = factory.Create();
  ASSERT_NE(one, nullptr);
  ASSERT_NE(other, nullptr);
  EXPECT_NE(one, other);
  application_.TakeCalls();
  one.reset();
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "the other one still needs everything";
  other.reset();
  EXPECT_EQ(application_.TakeCalls().back(), "release_service 6005 7");

  factory.SetInstanceIdentifier(factory.GetInstanceIdentifier());
  EXPECT_EQ(factory.GetInstanceIdentifier().ToString(), "7");
  for (const char* const foreign : {"", "somewhere", "65536", "0xFFFF", "ANY"}) {
    factory.SetInstanceIdentifier(ara::com::InstanceIdentifier(foreign));
    EXPECT_EQ(factory.Create(), nullptr) << foreign;
    EXPECT_EQ(factory.Create(), nullptr) << foreign;
  }
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
}

TEST_F(BindingTest, TheRegistryKnowsTheFiveServicesByBothIds) {
  using Identity = std::tuple<std::uint16_t, std::uint16_t, std::uint8_t, std::uint32_t>;  // ids, major, minor
  for (const Identity& identity :
       {Identity{9235, 24866, 6, 0}, Identity{40160, 24687, 1, 1}, Identity{56470, 24581, 4, 3},
        Identity{27103, 24650, 2, 0}, Identity{22592, 24808, 2, 0}}) {
    const auto* const mapping = VSomeIPServiceMapping::GetMappingForServiceId(std::get<0>(identity));
    ASSERT_NE(mapping, nullptr) << std::get<0>(identity);
    EXPECT_EQ(Identity(mapping->GetServiceId(), mapping->GetVSomeIPService(), mapping->GetVSomeIPServiceVersionMajor(),
                       mapping->GetVSomeIPServiceVersionMinor()),
              identity);
    EXPECT_EQ(mapping->GetVSomeIPRequiredServiceVersionMinor(), 0xFFFFFFFFU);
    EXPECT_FALSE(mapping->IsMinimumMinorPolicyEnabled());
    EXPECT_EQ(mapping->GetNumberOfBlacklistedVersions(), 0U);
    EXPECT_NE(mapping->GetBlacklistedVersions(), nullptr);
    const auto mappings = VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(mapping->GetVSomeIPService());
    ASSERT_EQ(mappings.size(), 1U);
    EXPECT_EQ(&mappings.at(mapping->GetServiceId()).get(), mapping);
  }
  for (const std::uint16_t unknown : {std::uint16_t{0}, std::uint16_t{24581}, std::uint16_t{65535}}) {
    EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(unknown), nullptr);
  }
  EXPECT_TRUE(VSomeIPServiceMapping::GetMappingForVSomeIPServiceId(9235).empty());
}

TEST_F(BindingTest, TheFirstRegisteredLookupThatKnowsAnIdWins) {
  const auto* const psd2 = AraComVSomeIPServiceMapping::GetMappingForServiceId(9235);
  const auto* const energysystem = AraComVSomeIPServiceMapping::GetMappingForServiceId(56470);
  VSomeIPServiceMapping::MultiMapping twice;
  twice.InsertMapping(psd2);
  twice.InsertMapping(psd2);
  EXPECT_EQ(twice.size(), 1U);

  ServiceIdRegistry lookups{&AraComVSomeIPServiceMapping::GetMappingForServiceId};
  EXPECT_EQ(LookUp(lookups, 1), nullptr);
  lookups.push_back([psd2](std::uint16_t) { return psd2; });
  EXPECT_EQ(LookUp(lookups, 1), psd2);
  EXPECT_EQ(LookUp(lookups, 56470), energysystem);
  VSomeIPServiceIdRegistry someipLookups{&AraComVSomeIPServiceMapping::GetMappingForVSomeIPServiceId};
  someipLookups.push_back([twice](std::uint16_t) { return twice; });
  EXPECT_EQ(LookUp(someipLookups, 1).count(9235), 1U);
  EXPECT_EQ(LookUp(someipLookups, 24581).size(), 1U) << "entries are not merged";
  EXPECT_EQ(LookUp(someipLookups, 24581).count(56470), 1U);

  // What a lookup throws passes, and an empty one is the standard library's error.
  lookups = {[](std::uint16_t) -> const VSomeIPServiceMapping::Mapping* { throw std::out_of_range("gone"); }};
  EXPECT_THROW(LookUp(lookups, 1), std::out_of_range);
  EXPECT_THROW(LookUp(VSomeIPServiceIdRegistry{nullptr}, 1), std::bad_function_call);
  EXPECT_EQ(LookUp(ServiceIdRegistry{}, 56470), nullptr);
}

}  // namespace
