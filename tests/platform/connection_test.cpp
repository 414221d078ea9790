// The parts of the SOME/IP binding that use the stack, against a provider in the same process.
#include "platform/include/connection.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <memory_resource>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/include/method_handler.h"
#include "platform/include/runtime.h"
#include "platform/include/service_availability.h"
#include "tests/embedded_stack/test_node.h"
#include "tests/platform/fake_mapping.h"

namespace ara::com::internal::vsomeip::runtime {

// What a library with services would define.
const VSomeIPServiceMapping::Mapping* VSomeIPServiceMapping::GetMappingForServiceId(std::uint16_t araServiceId) {
  static const FakeMapping mapping;
  return araServiceId == mapping.GetServiceId() ? &mapping : nullptr;
}

namespace {

using embedded_stack_test::Node;
using embedded_stack_test::Record;
using testing::ElementsAre;

constexpr std::uint16_t kAraService = 0x0A11;
constexpr std::uint8_t kMajor = 3;
constexpr std::uint16_t kGet = 0x4010;

// Never searched for, so that nothing but requests makes it available.
const std::uint16_t kUnwatched = FakeMapping().GetVSomeIPService() + 1;
common::ServiceInstance Instance(std::uint16_t instance) { return {kUnwatched, instance, kMajor, 0}; }

// Offers instances whose one method answers with nothing.
class Provider : public Node {
 public:
  Provider(std::uint16_t service, std::uint16_t instance) : Node("provider"), service_(service) {
    Offer(instance);
    Start();
  }
  void Offer(std::uint16_t instance) {
    (*this)->register_message_handler(service_, instance, kGet, [this](const auto& request) {
      (*this)->send(::vsomeip::runtime::get()->create_response(request));
    });
    (*this)->offer_service(service_, instance, kMajor, 0);
  }
  void StopOffer(std::uint16_t instance) { (*this)->stop_offer_service(service_, instance, kMajor, 0); }

 private:
  const std::uint16_t service_;
};

struct Receiver {
  void OnMessage(const std::shared_ptr<::vsomeip::message>& message) { requests.Add(message->get_request()); }
  Record<::vsomeip::request_t> requests;
};

void Register(std::uint16_t instance, const std::shared_ptr<Receiver>& receiver) {
  common::registerMethodHandler(kUnwatched, instance, kGet, common::WeakMethodHandler(receiver, &Receiver::OnMessage),
                                false);
}
void Unregister(std::uint16_t instance) { common::unregisterMethodHandler(kUnwatched, instance, kGet, false); }

::vsomeip::request_t SendRequest(std::uint16_t instance) {
  const auto request = VSomeIPConnection::instance_.MessageRuntime()->create_request();
  request->set_service(kUnwatched);
  request->set_instance(instance);
  request->set_method(kGet);
  request->set_interface_version(kMajor);
  VSomeIPConnection::instance_.Application()->send(request);
  return request->get_request();
}

// Records whether an instance is offered, for as long as it lives.
struct Follower {
  explicit Follower(const common::ServiceInstance& service)
      : token(common::registerAvailabilityHandler(service, [this](bool available) { states.Add(available); })) {}
  ~Follower() { common::unregisterAvailabilityHandler(token); }
  Record<bool> states;
  const std::uint64_t token;
};

using Request = VSomeIPConnection::RequestedServiceInstance;

TEST(FindService, FollowsWhatIsOffered) {
  using List = InstanceIdentifierContainer;
  Provider provider(FakeMapping().GetVSomeIPService(), 0x11);
  EXPECT_THAT(Runtime::FindService(kAraService, InstanceIdentifier::Any()), ElementsAre("17"));  // it waits for that
  EXPECT_THAT(Runtime::FindService(kAraService, "0x12"), ElementsAre());
  EXPECT_THAT(Runtime::FindService(0x0A12, InstanceIdentifier::Any()), ElementsAre());

  Record<List> all, one, first;
  const auto record = [](Record<List>& lists) {
    return [&lists](List instances, FindServiceHandle) { lists.Add(std::move(instances)); };
  };
  const auto follow_all = Runtime::StartFindService(kAraService, InstanceIdentifier::Any(), record(all));
  EXPECT_TRUE(all.WaitForLast({"17"}));
  provider.Offer(0x12);
  EXPECT_TRUE(all.WaitForLast({"17", "18"}));

  // Those who come later hear of what is there already.
  const auto follow_one = Runtime::StartFindService(kAraService, "0x12", record(one));
  EXPECT_TRUE(one.WaitForLast({"18"}));
  Runtime::StartFindService(kAraService, InstanceIdentifier::Any(), [&](List instances, FindServiceHandle search) {
    Runtime::StopFindService(search);
    first.Add(std::move(instances));
  });
  EXPECT_TRUE(first.WaitForCount(1));

  provider.StopOffer(0x12);
  EXPECT_TRUE(all.WaitForLast({"17"}));
  EXPECT_TRUE(one.WaitForLast({}));
  EXPECT_THAT(one.Items(), ElementsAre(ElementsAre("18"), ElementsAre()));
  EXPECT_THAT(first.Items(), ElementsAre(ElementsAre("17", "18")));
  Runtime::StopFindService(follow_one);
  Runtime::StopFindService(follow_all);
}

TEST(Connection, EachFollowerHearsItsChangesAndTheLastReleaseCounts) {
  Provider provider(kUnwatched, 0x21);
  Request one(Instance(0x21)), other(Instance(0x21));
  {
    Follower early(one);
    ASSERT_TRUE(early.states.WaitForLast(true));
    {
      Follower late(one);
      provider.StopOffer(0x21);
      EXPECT_TRUE(late.states.WaitForLast(false));
      EXPECT_TRUE(early.states.WaitForLast(false));
      EXPECT_THAT(late.states.Items(), ElementsAre(false));
    }
    provider.Offer(0x21);
    EXPECT_TRUE(early.states.WaitForLast(true));
    EXPECT_THAT(early.states.Items(), ElementsAre(true, false, true));
  }

  const auto receiver = std::make_shared<Receiver>();
  Register(0x21, receiver);
  one.DropServiceInstance();
  one.DropServiceInstance();
  EXPECT_TRUE(receiver->requests.WaitForLast(SendRequest(0x21)));  // the other request still stands
  other.DropServiceInstance();
  VSomeIPConnection::instance_.DoReleaseService(Instance(0x21));  // one too many
  Request again(Instance(0x21));
  Follower returned(again);
  ASSERT_TRUE(returned.states.WaitForLast(true));
  EXPECT_TRUE(receiver->requests.WaitForLast(SendRequest(0x21)));
  Unregister(0x21);
  again.DropServiceInstance();
}

TEST(MethodHandlers, EveryLivingHandlerGetsEveryMessage) {
  Provider provider(kUnwatched, 0x31);
  Request request(Instance(0x31));
  Follower follower(request);
  ASSERT_TRUE(follower.states.WaitForLast(true));

  auto one = std::make_shared<Receiver>();
  const auto two = std::make_shared<Receiver>();
  Register(0x31, one);
  const auto come_and_go = [](const auto&) {  // while the others are being called
    for (int i = 0; i < 5; ++i) {
      Register(0x31, std::make_shared<Receiver>());
    }
    for (int i = 0; i < 5; ++i) {
      Unregister(0x31);
    }
  };
  common::registerMethodHandler(kUnwatched, 0x31, kGet, come_and_go, false);
  Register(0x31, two);
  constexpr std::size_t kCalls = 50;
  std::vector<::vsomeip::request_t> sent, sent_by_thread;
  const auto send = [](std::vector<::vsomeip::request_t>& ids) {
    std::generate_n(std::back_inserter(ids), kCalls, [] { return SendRequest(0x31); });
  };
  std::thread thread([&] { send(sent_by_thread); });
  send(sent);
  thread.join();
  sent.insert(sent.end(), sent_by_thread.begin(), sent_by_thread.end());
  for (const auto& receiver : {one, two}) {
    EXPECT_TRUE(receiver->requests.WaitForCount(2 * kCalls));
    EXPECT_THAT(receiver->requests.Items(), testing::UnorderedElementsAreArray(sent));
  }
  Unregister(0x31);  // one's, which lives a little longer
  one.reset();
  EXPECT_TRUE(two->requests.WaitForLast(SendRequest(0x31)));
  Unregister(0x31);
  Unregister(0x31);
  request.DropServiceInstance();
}

// Counts shared objects' allocations: one lasts until the last weak reference to its object is gone.
struct CountingMemory : std::pmr::memory_resource {
  void* do_allocate(std::size_t size, std::size_t) override { return ++live, ::operator new(size); }
  void do_deallocate(void* pointer, std::size_t, std::size_t) override { --live, ::operator delete(pointer); }
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
  int live = 0;
};

TEST(MethodHandlers, DeadOnesAreNotKept) {
  CountingMemory memory;
  const auto make_receiver = [&] {
    return std::allocate_shared<Receiver>(std::pmr::polymorphic_allocator<Receiver>(&memory));
  };
  const auto stays = make_receiver();
  Register(0x41, stays);
  for (int round = 0; round < 1000; ++round) {
    const auto comes_and_goes = make_receiver();
    Register(0x41, comes_and_goes);
    Unregister(0x41);  // as a proxy does it: its object goes after that
    ASSERT_LE(memory.live, 3) << "after " << round << " rounds";
  }
  Unregister(0x41);
  EXPECT_EQ(memory.live, 1);
  Unregister(0x41);  // one too many
}

std::ptrdiff_t CountThreads() {
  std::thread([] {}).join();  // sanitizers begin a thread of their own with the first
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// A thread that has been joined may still be listed for a moment.
bool ThreadsEnd(std::ptrdiff_t left) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (CountThreads() > left && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
  }
  return CountThreads() <= left;
}

TEST(ConnectionDeathTest, IsStoppedAtExitWhateverOutlivesIt) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto use_and_exit = [] {
    static const std::ptrdiff_t threads = CountThreads();
    std::atexit([] {  // runs after the connection has been stopped
      Unregister(0x51);
      common::unregisterAvailabilityHandler(1);
      VSomeIPConnection::instance_.DoReleaseService(Instance(0x51));
      VSomeIPConnection::instance_.Application()->unsubscribe(kUnwatched, 0x51, 1);
      if (!ThreadsEnd(threads)) {
        std::_Exit(1);
      }
    });
    VSomeIPConnection::instance_.DoRequestService(Instance(0x51));
    Register(0x51, std::make_shared<Receiver>());
    common::registerAvailabilityHandler(Instance(0x51), [](bool) {});
    VSomeIPConnection::instance_.Application()->subscribe(kUnwatched, 0x51, 1);
    std::exit(CountThreads() > threads ? 0 : 2);
  };
  EXPECT_EXIT(use_and_exit(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ara::com::internal::vsomeip::runtime
