#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interfaces/routebasedenergycontents/routebasedenergycontents_service_adapter.h"
#include "tests/support/recording_application.h"

namespace skeleton_test {

using namespace kro::services::routebasedenergycontents::datatypes;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;
using Status = std::vector<DT_rwmStatus_struct>;
using Message = std::shared_ptr<::vsomeip::message>;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

inline constexpr std::uint16_t kService = 0x606F;
inline constexpr std::uint16_t kInstance = 7;

/// The rwmStatus value whose member0 is `number`: 14 bytes on the wire.
inline Status StatusOf(unsigned number) {
  DT_rwmStatus_struct record;
  record.member0 = number;
  return {record};
}

class SkeletonTest : public ::testing::Test {
 protected:
  void SetUp() override {
    application_.TakeCalls();
    application_.TakeSent();
  }
  void TearDown() override {
    skeleton_.reset();
    while (application_.AnswerWhatIsOffered({})) {
    }
    application_.on_call = nullptr;
    application_.on_send = nullptr;
    application_.on_notify = nullptr;
    EXPECT_EQ(application_.CountLeftovers(), 0U) << "everything that was asked for is given back";
  }

  static void SetAllFields(RouteBasedEnergyContentsSkeleton& skeleton) {
    skeleton.destinations.Update({});
    skeleton.rangeOnRouteValues.Update({});
    skeleton.routeBasedResidualEnergyValues.Update({});
    skeleton.rwmStatus.Update(StatusOf(1));
    skeleton.targetSocChargings.Update({{}});
  }

  Message RequestTo(std::uint16_t method) const {
    auto request = ::vsomeip::runtime::get()->create_request(false);
    request->set_service(kService);
    request->set_instance(kInstance);
    request->set_method(method);
    request->set_interface_version(1);
    request->set_client(0x77);
    request->set_session(0x0011);
    return request;
  }

  support::RecordingApplication& application_ = support::RecordingApplication::Get();
  std::unique_ptr<RouteBasedEnergyContentsSkeleton> skeleton_ = std::make_unique<RouteBasedEnergyContentsSkeleton>(
      ara::com::InstanceIdentifierContainer{ara::com::InstanceIdentifier("7")});
};

}  // namespace skeleton_test
