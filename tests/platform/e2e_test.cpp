#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/e2exf/state_machine.h"

namespace ara::com::e2exf {
namespace {

using Status = ProfileCheckStatus;

TEST(StateMachine, FollowsTheLastChecks) {
  const struct {
    const char* what;
    std::string checks;  // o: ok, e: error, n: no new data, r: repeated, a: not available
    std::string states;  // -: no data, I: init, V: valid, X: invalid
  } cases[] = {
      {"nothing but errors and silence is no data", "nenaen", "------"},
      {"valid with the second good message", "oo", "IV"},
      {"a repeated message shows a sender, but makes nothing valid", "rrro", "IIIV"},
      {"one error is forgiven at the beginning", "oeo", "IIV"},
      {"two are not", "oee", "IIX"},
      {"two errors in ten are forgiven when valid, not three", "ooeonoeoe", "IVVVVVVVX"},
      {"old errors leave the window", "ooeeoooooooooee", "IVVVVVVVVVVVVVV"},
      {"silence is forgiven for nine checks", "oonnnnnnnnnn", "IVVVVVVVVVVX"},
      {"two good messages among five without an error bring it back", "oeeoooonn", "IIXXXXXVV"},
      {"an error on the way back delays that", "oeeoeooooo", "IIXXXXXXXV"},
      {"one good message is too little for that", "oeennnnonn", "IIXXXXXXXX"},
      {"errors from before are forgotten afterwards", "oeeooooonee", "IIXXXXXVVVV"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    StateMachine machine;
    std::string states;
    for (const char check : test.checks) {
      // The letters stand for the values in the order of their enumerations.
      const auto status = static_cast<Status>(std::string("or?ean").find(check));
      states += "V-IX"[static_cast<std::size_t>(machine.Check(status))];
    }
    EXPECT_EQ(states, test.states);
  }
}

TEST(StatusHandler, KeepsOneStatePerEventForAllThreads) {
  const auto check = [](std::uint16_t service, std::uint16_t instance, std::uint16_t event) {
    return StatusHandler::HandleCheckStatus(service, instance, event, Status::kOk).state;
  };
  const auto check_often = [&] {
    for (int round = 0; round < 500; ++round) {
      check(1, 1, 1);
    }
  };
  std::thread other(check_often);
  check_often();
  other.join();
  EXPECT_EQ(check(1, 1, 1), SMState::kValid);
  EXPECT_EQ(check(2, 1, 1), SMState::kInit);
  EXPECT_EQ(check(1, 2, 1), SMState::kInit);
  EXPECT_EQ(check(1, 1, 2), SMState::kInit);
  EXPECT_EQ(StatusHandler::HandleCheckStatus(1, 1, 1, Status::kError).status, Status::kError);
}

}  // namespace
}  // namespace ara::com::e2exf
