#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core_types/com_error_domain.h"
#include "interfaces/psd2/psd2_descriptors.h"
#include "registry/service_mapping.h"
#include "tests/skeleton/skeleton_fixture.h"

namespace {

using namespace skeleton_test;

class OfferTest : public SkeletonTest {};

const auto kOffered = ElementsAre(
    "register_message_handler 606f 7 4040", "register_message_handler 606f 7 4020",
    "register_message_handler 606f 7 4030", "register_message_handler 606f 7 4010",
    "register_message_handler 606f 7 4050", "offer_service 606f 7 1 1", "offer_event 606f 7 c040 c040 1 2 0 0 1 0",
    "offer_event 606f 7 c020 c020 1 2 0 0 1 0", "offer_event 606f 7 c030 c030 1 2 0 0 1 0",
    "offer_event 606f 7 c010 c010 1 2 0 0 1 0", "offer_event 606f 7 c050 c050 1 2 0 0 1 0", "notify 606f 7 c040 4",
    "notify 606f 7 c020 4", "notify 606f 7 c030 4", "notify 606f 7 c010 e", "notify 606f 7 c050 8");
const auto kWithdrawn =
    ElementsAre("stop_offer_event 606f 7 c040", "stop_offer_event 606f 7 c020", "stop_offer_event 606f 7 c030",
                "stop_offer_event 606f 7 c010", "stop_offer_event 606f 7 c050", "stop_offer_service 606f 7",
                "unregister_message_handler 606f 7 4050", "unregister_message_handler 606f 7 4010",
                "unregister_message_handler 606f 7 4030", "unregister_message_handler 606f 7 4020",
                "unregister_message_handler 606f 7 4040");

TEST_F(OfferTest, OffersAndWithdrawsInOrder) {
  SetAllFields(*skeleton_);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "nothing goes out before the offer";
  skeleton_->OfferService();
  EXPECT_THAT(application_.TakeCalls(), kOffered);
  skeleton_->OfferService();
  EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "offered already";
  skeleton_->StopOfferService();
  EXPECT_THAT(application_.TakeCalls(), kWithdrawn);
  skeleton_->StopOfferService();
  skeleton_->OfferService();
  EXPECT_THAT(application_.TakeCalls(), kOffered);
  skeleton_.reset();
  EXPECT_THAT(application_.TakeCalls(), kWithdrawn);
}

TEST_F(OfferTest, NamesTheFirstFieldWithoutAValueInTheCheckOrder) {
  const auto errorOfOffer = [this] {
    try {
      skeleton_->OfferService();
    } catch (const ara::com::IllegalStateException& error) {
      return std::string(error.what());
    }
    return std::string("offered");
  };
  const std::string text =
      "Attempt to offer service \"/kro/services/routebasedenergycontents/RouteBasedEnergyContents\" with uninitialized "
      "field ";
  EXPECT_EQ(errorOfOffer(), text + "\"rwmStatus\"");
  skeleton_->rwmStatus.Update({});
  EXPECT_EQ(errorOfOffer(), text + "\"rangeOnRouteValues\"");
  skeleton_->rangeOnRouteValues.Update({});
  EXPECT_EQ(errorOfOffer(), text + "\"routeBasedResidualEnergyValues\"");
  skeleton_->routeBasedResidualEnergyValues.Update({});
  EXPECT_EQ(errorOfOffer(), text + "\"destinations\"");
  skeleton_->destinations.Update({});
  EXPECT_EQ(errorOfOffer(), text + "\"targetSocChargings\"");
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
  skeleton_->targetSocChargings.Update({});
  EXPECT_EQ(errorOfOffer(), "offered");
}

TEST_F(OfferTest, Psd2ChecksInOneOrderAndOffersInAnother) {
  using kro::services::psd2::psd2_binding::vsomeip::descriptors::Interface;
  kro::services::psd2::skeleton::Psd2Skeleton map({ara::com::InstanceIdentifier("9")});
  std::string named;
  ara::com::internal::vsomeip::common::ForEachType(Interface::CheckOrder{}, [&](auto field) {
    try {
      map.OfferService();
    } catch (const ara::com::IllegalStateException& error) {
      named += error.what() + std::string("\n");
    }
    (map.*decltype(field)::skeleton_field).Update({});
  });
  std::string expected;
  for (const char* const name :
       {"linkLayerLongRange", "linkLayerShortRange", "laneLayer", "positioningObjectsLayer", "egoPositionLayer",
        "dynamicContentLayer", "automatedParkingLayer", "timezoneInformation"}) {
    expected +=
        "Attempt to offer service \"/kro/services/psd2/Psd2\" with uninitialized field \"" + std::string(name) + "\"\n";
  }
  EXPECT_EQ(named, expected);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());

  map.OfferService();
  map.StopOfferService();
  const auto calls = application_.TakeCalls();
  std::vector<std::string> order;
  for (const char* const id : {"70", "60", "50", "30", "10", "20", "40", "80"}) {
    order.push_back(std::string("register_message_handler 6122 9 40") + id);
  }
  order.push_back("offer_service 6122 9 6 0");
  for (const char* const id : {"70", "60", "50", "30", "10", "20", "40", "80"}) {
    order.push_back(std::string("offer_event 6122 9 c0") + id + " c0" + id + " 1 2 0 0 1 0");
  }
  ASSERT_GE(calls.size(), order.size());
  EXPECT_EQ(std::vector(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(order.size())), order);
}

TEST_F(OfferTest, UndoesAnOfferThatFailsAtAnyStep) {
  SetAllFields(*skeleton_);
  for (const char* const failing :
       {"register_message_handler 606f 7 4030", "offer_service", "offer_event 606f 7 c010", "notify 606f 7 c020"}) {
    application_.on_call = [failing](const std::string& call) {
      if (call.rfind(failing, 0) == 0) {
        throw std::runtime_error("no network");
      }
    };
    EXPECT_THROW(skeleton_->OfferService(), std::runtime_error) << failing;
    application_.on_call = nullptr;
    EXPECT_EQ(application_.CountLeftovers(), 0U) << failing;
    application_.TakeCalls();
    skeleton_->rwmStatus.Update(StatusOf(2));
    EXPECT_THAT(application_.TakeCalls(), ElementsAre()) << "no binding is left attached: " << failing;
  }
  skeleton_->OfferService();
  EXPECT_THAT(application_.TakeCalls(), kOffered);
}

TEST_F(OfferTest, OffersEveryInstanceInOrderAndUpdatesThemAll) {
  RouteBasedEnergyContentsSkeleton both({"8", "9"});
  SetAllFields(both);
  both.OfferService();
  const auto calls = application_.TakeCalls();
  const auto first = std::find(calls.begin(), calls.end(), "offer_service 606f 8 1 1");
  EXPECT_NE(std::find(first, calls.end(), "offer_service 606f 9 1 1"), calls.end());
  both.rwmStatus.Update({});
  EXPECT_THAT(application_.TakeCalls(), ElementsAre("notify 606f 8 c010 4", "notify 606f 9 c010 4"));

  RouteBasedEnergyContentsSkeleton wrong({"10", "no instance"});
  SetAllFields(wrong);
  EXPECT_THROW(wrong.OfferService(), ara::com::ComErrorDomainException);
  EXPECT_EQ(application_.TakeCalls().back(), "unregister_message_handler 606f a 4040") << "all or nothing";
  EXPECT_THROW(RouteBasedEnergyContentsSkeleton({}), std::invalid_argument);
}

TEST_F(OfferTest, TheRegistryMakesAdaptersOfFittingSkeletonsOnly) {
  using ara::com::internal::vsomeip::runtime::VSomeIPServiceMapping;
  struct Other : ara::com::internal::skeleton::ServiceBase {
  } other;
  const auto* const mapping = VSomeIPServiceMapping::GetMappingForServiceId(40160);
  EXPECT_EQ(mapping->GetProxy(1), nullptr);
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(9235)->GetProxy(1), nullptr);
  try {
    mapping->GetSkeleton(other, 1);
    ADD_FAILURE() << "a foreign skeleton was taken";
  } catch (const ara::com::IllegalStateException& error) {
    EXPECT_STREQ(error.what(), "Given service interface does not fit to the binding adapter!");
  }
  EXPECT_EQ(VSomeIPServiceMapping::GetMappingForServiceId(56470)->GetSkeleton(*skeleton_, 1), nullptr);
}

// Every subscriber ends up with the value that the field ends up with.
TEST_F(OfferTest, UpdatesFromSeveralThreadsKeepTheirOrder) {
  SetAllFields(*skeleton_);
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->OfferService();
  application_.TakeCalls();
  std::vector<std::thread> writers;
  for (std::size_t writer = 1; writer <= 4; ++writer) {
    writers.emplace_back([this, writer] {
      for (int round = 0; round < 200; ++round) {
        skeleton_->rwmStatus.Update(Status(writer));
      }
    });
  }
  for (auto& writer : writers) {
    writer.join();
  }
  std::size_t length = 0;
  application_.on_send = [&](const Message& response) { length = response->get_payload()->get_length(); };
  application_.Deliver(RequestTo(0x4010));
  const auto calls = application_.TakeCalls();
  EXPECT_EQ(calls.size(), 801U) << "800 notifications and the response";
  char last[40];
  std::snprintf(last, sizeof(last), "notify 606f 7 c010 %zx", length);
  EXPECT_EQ(calls[799], last);
}

std::string ErrorOf(RouteBasedEnergyContentsSkeleton& skeleton) {
  try {
    skeleton.OfferService();
  } catch (const ara::com::IllegalStateException& error) {
    return error.what();
  }
  return "offered";
}

TEST_F(OfferTest, AnInstanceHasOneSkeleton) {
  SetAllFields(*skeleton_);
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->OfferService();
  const std::size_t offered = application_.CountLeftovers();
  {
    RouteBasedEnergyContentsSkeleton second({"12", "0x7"});
    SetAllFields(second);
    EXPECT_EQ(ErrorOf(second),
              "Instance \"0x7\" of service 40160 is offered already, by another skeleton of this process");
    EXPECT_EQ(application_.CountLeftovers(), offered) << "neither the first nor more than it";
  }
  application_.TakeSent();
  application_.Deliver(RequestTo(0x4010));
  EXPECT_EQ(application_.TakeSent().size(), 1U) << "the first still answers";
  skeleton_->StopOfferService();
  EXPECT_EQ(application_.CountLeftovers(), 0U);

  RouteBasedEnergyContentsSkeleton twice({"7", "0x7"});
  SetAllFields(twice);
  EXPECT_EQ(ErrorOf(twice), "Instance \"0x7\" of service 40160 is offered already, as \"7\"");
  EXPECT_EQ(application_.CountLeftovers(), 0U);
  RouteBasedEnergyContentsSkeleton same({"7", "7"});
  SetAllFields(same);
  EXPECT_EQ(ErrorOf(same), "offered");
  EXPECT_EQ(application_.CountLeftovers(), offered);
}

// The stack tells nobody but the reader of its own log. It is asked before each offer, and answers in that order.
TEST_F(OfferTest, AnInstanceThatAnotherProcessOffersIsWarnedOf) {
  SetAllFields(*skeleton_);
  RouteBasedEnergyContentsSkeleton others({"8", "9"});
  SetAllFields(others);
  testing::internal::CaptureStderr();
  skeleton_->OfferService();
  others.OfferService();
  skeleton_->StopOfferService();
  skeleton_->OfferService();
  EXPECT_TRUE(application_.AnswerWhatIsOffered({{kService, 9}, {kService + 1, 7}}));
  EXPECT_TRUE(application_.AnswerWhatIsOffered({{kService, 9}}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "none of these was asked about, but 9 comes after 8";
  testing::internal::CaptureStderr();
  EXPECT_TRUE(application_.AnswerWhatIsOffered({{kService, 9}}));
  EXPECT_TRUE(application_.AnswerWhatIsOffered({}));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_THAT(log, HasSubstr("Service 0x606f, instance 0x0009 is offered by another process already"));
  EXPECT_EQ(log.find("instance 0x0007"), std::string::npos) << "the own offer is no rival of the renewed one";
  EXPECT_FALSE(application_.AnswerWhatIsOffered({}));
}

// What the application believes afterwards, the stack believes.
TEST_F(OfferTest, OffersAndWithdrawalsOfTwoThreadsTakeTurns) {
  RouteBasedEnergyContentsSkeleton both({"8", "9"});
  SetAllFields(both);
  both.OfferService();
  const std::size_t offered = application_.CountLeftovers();
  for (int round = 0; round < 50; ++round) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&both, i] {
        for (int step = 0; step < 5; ++step) {
          if ((step + i) % 2 == 0) {
            both.OfferService();
          } else {
            both.StopOfferService();
          }
        }
      });
    }
    for (auto& thread : threads) {
      thread.join();
    }
    both.OfferService();
    ASSERT_EQ(application_.CountLeftovers(), offered) << round;
    both.StopOfferService();
    ASSERT_EQ(application_.CountLeftovers(), 0U) << round;
  }
}

TEST_F(OfferTest, AGetHandlerMayEndAnOfferThatIsEndingOrBeginning) {
  SetAllFields(*skeleton_);
  std::promise<void> entered;
  std::promise<void> ending;
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    entered.set_value();
    ending.get_future().wait();
    skeleton_->StopOfferService();
    return ara::core::Promise<Status>().get_future();
  });
  skeleton_->OfferService();
  application_.on_call = [&](const std::string& call) {
    if (call == "stop_offer_service 606f 7") {
      ending.set_value();
    }
  };
  std::thread network([this] { application_.Deliver(RequestTo(0x4010)); });
  entered.get_future().wait();
  testing::internal::CaptureStderr();
  skeleton_->StopOfferService();
  network.join();
  application_.on_call = nullptr;
  EXPECT_EQ(application_.CountLeftovers(), 0U);

  // In the middle of an offer: it stands, and is then taken back.
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    skeleton_->StopOfferService();
    return ara::core::Promise<Status>().get_future();
  });
  application_.on_call = [&](const std::string& call) {
    if (call.rfind("notify 606f 7 c010", 0) == 0) {
      network = std::thread([this] { application_.Deliver(RequestTo(0x4010)); });
    }
  };
  EXPECT_EQ(ErrorOf(*skeleton_), "offered");
  network.join();
  application_.on_call = nullptr;
  EXPECT_EQ(application_.CountLeftovers(), 0U);
  testing::internal::GetCapturedStderr();
}

// A stack that calls back from within: the thread that is at it cannot wait for itself.
TEST_F(OfferTest, AnOfferMayBeEndedFromWithinItself) {
  SetAllFields(*skeleton_);
  application_.on_call = [&](const std::string& call) {
    if (call.rfind("notify 606f 7 c010", 0) == 0) {
      skeleton_->StopOfferService();
    }
  };
  EXPECT_EQ(ErrorOf(*skeleton_), "The offer was withdrawn while it was being made");
  EXPECT_EQ(application_.CountLeftovers(), 0U);
  application_.on_call = nullptr;
  EXPECT_EQ(ErrorOf(*skeleton_), "offered");
  std::string error;
  application_.on_call = [&](const std::string& call) {
    if (call == "stop_offer_service 606f 7") {
      error = ErrorOf(*skeleton_);
      skeleton_->StopOfferService();
    }
  };
  skeleton_->StopOfferService();
  EXPECT_EQ(error, "OfferService() called while this thread is offering or withdrawing the service");
  application_.on_call = nullptr;
  EXPECT_EQ(ErrorOf(*skeleton_), "offered");
}

// Also when the handler has ended the offer itself, so that the second end finds nothing to withdraw.
TEST_F(OfferTest, DestructionWaitsForAGetHandlerThatHasEndedItsOffer) {
  SetAllFields(*skeleton_);
  std::promise<void> ended;
  std::promise<void> destroyed;
  skeleton_->rwmStatus.RegisterGetHandler([&] {
    skeleton_->StopOfferService();
    ended.set_value();
    EXPECT_EQ(destroyed.get_future().wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    return ara::core::Promise<Status>().get_future();
  });
  skeleton_->OfferService();
  testing::internal::CaptureStderr();
  std::thread network([this] { application_.Deliver(RequestTo(0x4010)); });
  ended.get_future().wait();
  skeleton_.reset();
  destroyed.set_value();
  network.join();
  testing::internal::GetCapturedStderr();
}

TEST_F(OfferTest, TwoGetHandlersMayEndEachOthersOffers) {
  RouteBasedEnergyContentsSkeleton other({"8"});
  std::promise<void> entered[2];
  RouteBasedEnergyContentsSkeleton* const skeletons[] = {skeleton_.get(), &other};
  for (const std::size_t i : {0U, 1U}) {
    SetAllFields(*skeletons[i]);
    skeletons[i]->rwmStatus.RegisterGetHandler([&, i] {
      entered[i].set_value();
      entered[1 - i].get_future().wait();
      skeletons[1 - i]->StopOfferService();
      return ara::core::Promise<Status>().get_future();
    });
    skeletons[i]->OfferService();
  }
  testing::internal::CaptureStderr();
  std::thread network([this] { application_.Deliver(RequestTo(0x4010)); });
  const auto request = RequestTo(0x4010);
  request->set_instance(8);
  application_.Deliver(request);
  network.join();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(application_.CountLeftovers(), 0U);
}

TEST_F(OfferTest, AValueThatTheStackRefusesIsReportedAndForgotten) {
  SetAllFields(*skeleton_);
  skeleton_->rwmStatus.ServeCurrentValue();
  skeleton_->OfferService();
  application_.on_call = [](const std::string& call) {
    if (call.rfind("notify", 0) == 0) {
      throw std::length_error("too long");
    }
  };
  auto refused = Status(3);
  EXPECT_THROW(skeleton_->rwmStatus.Update(std::move(refused)), std::length_error);
  EXPECT_EQ(refused, Status(3)) << "who hands a value over keeps it until it is taken";
  application_.on_call = nullptr;
  std::size_t length = 0;
  application_.on_send = [&](const Message& response) { length = response->get_payload()->get_length(); };
  application_.Deliver(RequestTo(0x4010));
  EXPECT_EQ(length, 14U) << "the value that every subscriber has";
}

struct Undefined
    : kro::services::routebasedenergycontents::routebasedenergycontents_binding::vsomeip::descriptors::rwmStatus {
  static constexpr std::uint16_t event_id = 0xFFFF;
};

// An event that the platform reports as undefined is passed over when it is offered; sending it ends the process.
TEST_F(OfferTest, UndefinedEventsAreNotOffered) {
  class Binding final : public ara::com::internal::vsomeip::skeleton::ServiceImplBase {
   public:
    explicit Binding(ara::com::internal::skeleton::ServiceBase& service) : ServiceImplBase(service, kInstance) {}
    using ServiceImplBase::OfferEvent;
  } binding(*skeleton_);
  const std::uint16_t groups[] = {0xC010};
  testing::internal::CaptureStderr();
  binding.OfferEvent(kService, kInstance, 0xFFFF, groups, true, nullptr);
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
  testing::internal::GetCapturedStderr();

  ara::com::internal::vsomeip::skeleton::EventImpl<Status, Undefined> event(kInstance);
  EXPECT_DEATH(event.Send(StatusOf(1)), "65535 is undefined");
}

TEST_F(OfferTest, AThousandRoundsLeaveNothingBehind) {
  SetAllFields(*skeleton_);
  for (int round = 0; round < 1000; ++round) {
    skeleton_->OfferService();
    skeleton_->StopOfferService();
    ASSERT_EQ(application_.CountLeftovers(), 0U);
  }
  application_.TakeCalls();
  skeleton_->rwmStatus.Update({});
  EXPECT_THAT(application_.TakeCalls(), ElementsAre());
}

}  // namespace
