#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/e2exf/state_machine.h"

namespace ara::com::e2exf {
namespace {

ProfileCheckStatus StatusOf(char letter) {
  switch (letter) {
    case 'o':
      return ProfileCheckStatus::kOk;
    case 'e':
      return ProfileCheckStatus::kError;
    case 'n':
      return ProfileCheckStatus::kNoNewData;
    case 'r':
      return ProfileCheckStatus::kRepeated;
    default:
      return ProfileCheckStatus::kNotAvailable;
  }
}

char LetterOf(SMState state) { return std::string("V-IX?")[static_cast<std::size_t>(state)]; }

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
      states += LetterOf(machine.Check(StatusOf(check)));
    }
    EXPECT_EQ(states, test.states);
  }
}

TEST(StatusHandler, KeepsOneStatePerEvent) {
  const auto check = [](std::uint16_t service, std::uint16_t instance, std::uint16_t event) {
    return StatusHandler::HandleCheckStatus(service, instance, event, ProfileCheckStatus::kOk);
  };
  check(1, 1, 1);
  EXPECT_EQ(check(1, 1, 1).state, SMState::kValid);
  EXPECT_EQ(check(2, 1, 1).state, SMState::kInit);
  EXPECT_EQ(check(1, 2, 1).state, SMState::kInit);
  EXPECT_EQ(check(1, 1, 2).state, SMState::kInit);
  EXPECT_EQ(StatusHandler::HandleCheckStatus(1, 1, 1, ProfileCheckStatus::kError).status, ProfileCheckStatus::kError);
}

TEST(StatusHandler, MayBeCalledByManyThreads) {
  std::vector<std::thread> threads;
  for (std::uint16_t i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int round = 0; round < 500; ++round) {
        StatusHandler::HandleCheckStatus(3, 1, i % 2, ProfileCheckStatus::kOk);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(StatusHandler::HandleCheckStatus(3, 1, 0, ProfileCheckStatus::kNoNewData).state, SMState::kValid);
}

}  // namespace
}  // namespace ara::com::e2exf
