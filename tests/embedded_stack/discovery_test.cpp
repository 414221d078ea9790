// Discovery without sockets and clocks: entries and points in time go in, entries and changes come out.
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "embedded_stack/discovery/offers.h"
#include "embedded_stack/discovery/peer_table.h"
#include "embedded_stack/discovery/requests.h"
#include "vsomeip/constants.hpp"

namespace vsomeip_v3::embedded {
namespace {

using namespace std::chrono_literals;

constexpr ServiceInstance kKey{0x4711, 1};
constexpr std::uint32_t kPeer = 0x7F4D0001;
constexpr std::uint32_t kOtherPeer = 0x7F4D0002;
constexpr eventgroup_t kGroup = 0x21;
const TimePoint kStart = TimePoint() + 1h;

DiscoveryEntry Entry(EntryType type, ttl_t ttl = 3, std::optional<Endpoint> udp = Endpoint{kPeer, 500}) {
  DiscoveryEntry entry;
  entry.type = type;
  entry.service = kKey.first;
  entry.instance = kKey.second;
  entry.major = 3;
  entry.ttl = ttl;
  entry.eventgroup = kGroup;
  entry.udp = udp;
  return entry;
}

TEST(PeerTableTest, SessionsCountUpAndLoseTheRebootFlagWhenTheyWrap) {
  PeerTable peers;
  EXPECT_EQ(peers.Next(std::nullopt, kStart).id, 1);
  EXPECT_EQ(peers.Next(kPeer, kStart).id, 1);  // counted for each peer
  for (int i = 2; i <= 0xFFFF; ++i) EXPECT_TRUE(peers.Next(kPeer, kStart).reboot);
  const PeerTable::Session wrapped = peers.Next(kPeer, kStart);
  EXPECT_EQ(wrapped.id, 1);
  EXPECT_FALSE(wrapped.reboot);
}

TEST(PeerTableTest, RestartsShowOnceAndOnlyWhereThereWasOne) {
  struct Step {
    bool multicast;
    PeerTable::Session session;
    bool restarted;
  };
  const Step steps[] = {
      {true, {5, true}, false},  {false, {1, true}, false}, {true, {6, true}, false},
      {true, {1, true}, true},    // the group's session starts over
      {false, {1, true}, false},  // and so does the peer's own, which is the same restart
      {true, {2, true}, false},  {true, {2, true}, true},   {true, {9, false}, false},  // the counter wrapped
      {true, {1, false}, false},                                                        // wrapped once more
      {true, {2, true}, true},
  };
  PeerTable peers;
  for (std::size_t i = 0; i < std::size(steps); ++i) {
    EXPECT_EQ(peers.Heard(kPeer, steps[i].multicast, steps[i].session, kStart), steps[i].restarted) << i;
  }
  for (std::uint32_t peer = 0; peer < 5000; ++peer) peers.Heard(peer, true, {1, true}, kStart + 1s);
  EXPECT_EQ(peers.Size(), PeerTable::kMaxPeers);
}

class OffersTest : public testing::Test {
 protected:
  OffersTest() : offers_(Settings(), [](service_t, instance_t, eventgroup_t group) { return group == kGroup; }) {
    offers_.Add(kKey, {3, 7, {0x7F4D0100, 30509}, 0}, now_);
  }
  static DiscoverySettings Settings() {
    DiscoverySettings settings;
    settings.initial_delay_min = settings.initial_delay_max = 50ms;
    return settings;
  }
  DiscoveryOutput Poll() {
    DiscoveryOutput out;
    offers_.Poll(now_, out);
    return out;
  }
  DiscoveryOutput Subscribe(const DiscoveryEntry& entry, std::uint32_t from = kPeer) {
    DiscoveryOutput out;
    offers_.OnSubscribe(entry, from, now_, out);
    return out;
  }
  std::size_t SubscriberCount() const { return offers_.Subscribers(kKey, {kGroup}, now_).size(); }

  TimePoint now_ = kStart;
  Offers offers_;
};

TEST_F(OffersTest, PhasesAreInitialDelayThenDoublingRepetitionsThenCycle) {
  std::vector<std::chrono::milliseconds> gaps;
  TimePoint last = now_;
  for (int i = 0; i < 6; ++i) {
    now_ = offers_.NextDeadline();
    const DiscoveryOutput out = Poll();
    ASSERT_EQ(out.entries.size(), 1U);
    EXPECT_FALSE(out.entries[0].to);
    EXPECT_EQ(out.entries[0].entry.ttl, 3U);
    gaps.push_back(std::chrono::duration_cast<std::chrono::milliseconds>(now_ - last));
    last = now_;
  }
  EXPECT_EQ(gaps, (std::vector<std::chrono::milliseconds>{50ms, 200ms, 400ms, 800ms, 1000ms, 1000ms}));
  DiscoveryOutput out;
  EXPECT_TRUE(offers_.Remove(kKey, out));
  ASSERT_EQ(out.entries.size(), 1U);
  EXPECT_EQ(out.entries[0].entry.ttl, 0U);
  EXPECT_EQ(offers_.NextDeadline(), kNever);
}

TEST_F(OffersTest, FindIsAnsweredToTheOneWhoAsksOnceTheOfferIsPublic) {
  using Case = std::tuple<service_t, instance_t, major_version_t, minor_version_t, bool>;  // the last: answered
  const Case cases[] = {{0x4711, 1, 3, 7, true},          {0x4711, ANY_INSTANCE, ANY_MAJOR, ANY_MINOR, true},
                        {0x4711, 1, 3, 6, true},          {0x4711, 1, 3, 8, false},
                        {0x4711, 1, 4, ANY_MINOR, false}, {0x4711, 2, 3, 7, false},
                        {0x4712, 1, 3, 7, false}};
  for (const bool is_public : {false, true}) {
    for (const Case& test : cases) {
      DiscoveryEntry find = Entry(EntryType::kFind);
      bool answered = false;
      std::tie(find.service, find.instance, find.major, find.minor, answered) = test;
      DiscoveryOutput out;
      offers_.OnFind(find, kPeer, now_, out);
      ASSERT_EQ(out.entries.size(), answered && is_public ? 1U : 0U);
      EXPECT_TRUE(out.entries.empty() || out.entries[0].to == kPeer);
    }
    now_ += 50ms;
    Poll();
  }
}

TEST_F(OffersTest, SubscriptionsAreAcceptedOrRejected) {
  const struct {
    const char* what;
    bool accepted;
    void (*change)(DiscoveryEntry&);
  } cases[] = {
      {"good", true, [](DiscoveryEntry& e) { e.counter = 5; }},
      {"other service", false, [](DiscoveryEntry& e) { e.service = 1; }},
      {"other version", false, [](DiscoveryEntry& e) { e.major = 4; }},
      {"unknown eventgroup", false, [](DiscoveryEntry& e) { e.eventgroup = 9; }},
      {"no endpoint", false, [](DiscoveryEntry& e) { e.udp.reset(); }},
      {"port 0", false, [](DiscoveryEntry& e) { e.udp->port = 0; }},
      {"multicast endpoint", false, [](DiscoveryEntry& e) { e.udp->address = 0xE0000001; }},
      {"broken options", false, [](DiscoveryEntry& e) { e.bad_options = true; }},
  };
  for (const auto& test : cases) {
    DiscoveryEntry entry = Entry(EntryType::kSubscribe);
    test.change(entry);
    const DiscoveryOutput out = Subscribe(entry);
    ASSERT_EQ(out.entries.size(), 1U) << test.what;
    const DiscoveryEntry& answer = out.entries[0].entry;
    EXPECT_EQ(out.entries[0].to, kPeer) << test.what;
    EXPECT_EQ(answer.type, EntryType::kAcknowledge) << test.what;
    EXPECT_EQ(answer.ttl, test.accepted ? 3U : 0U) << test.what;
    EXPECT_EQ(answer.counter, entry.counter) << test.what;
    EXPECT_EQ(answer.eventgroup, entry.eventgroup) << test.what;
    EXPECT_EQ(out.subscribers.size(), test.accepted ? 1U : 0U) << test.what;
  }
}

TEST_F(OffersTest, OnlyNewSubscribersGetTheValuesAndTheyLastUntilTheyStopExpireOrRestart) {
  const DiscoveryEntry subscribe = Entry(EntryType::kSubscribe);
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 1U);
  now_ += 2s;
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 0U);  // renewed
  now_ += 2s;
  Poll();
  EXPECT_EQ(SubscriberCount(), 1U);
  now_ += 1s;
  EXPECT_EQ(SubscriberCount(), 0U);  // expired
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 1U);
  EXPECT_TRUE(Subscribe(Entry(EntryType::kSubscribe, 0)).entries.empty());  // stopped
  EXPECT_EQ(SubscriberCount(), 0U);
  Subscribe(subscribe);
  Subscribe(Entry(EntryType::kSubscribe, 3, Endpoint{kOtherPeer, 1}), kOtherPeer);
  offers_.OnPeerRestarted(kPeer);
  EXPECT_EQ(offers_.Subscribers(kKey, {kGroup}, now_), (std::set<Endpoint>{{kOtherPeer, 1}}));
}

TEST_F(OffersTest, SubscribersAreBounded) {
  for (std::uint32_t i = 0; i < 2 * Offers::kMaxSubscriptions; ++i) {
    Subscribe(Entry(EntryType::kSubscribe, kForever, Endpoint{kPeer + i, 1}));
  }
  EXPECT_EQ(SubscriberCount(), Offers::kMaxSubscriptions);
}

// What comes out is told in letters: + and - for a service that comes and goes, ? for a find, s1 and u2 for a subscribe
// and its end to the first or second peer, a and r for one that was accepted or rejected, d for a duplicate offer.
class RequestsTest : public testing::Test {
 protected:
  RequestsTest() : requests_(DiscoverySettings()) {
    requests_.SetLocalEndpoint({0x7F4D0009, 30509});
    requests_.Request(kKey, ANY_MAJOR, ANY_MINOR, now_);
    finds_ = Poll();
  }
  std::string Told() {
    std::string told;
    for (const auto& change : out_.availability) told += change.available ? '+' : '-';
    for (const auto& [to, entry] : out_.entries) {
      told += entry.type == EntryType::kFind ? '?' : entry.ttl == 0 ? 'u' : 's';
      if (to) told += std::to_string(*to - kPeer + 1);
    }
    for (const auto& status : out_.subscriptions) told += status.accepted ? 'a' : 'r';
    for (const Drop drop : out_.drops) told += drop == Drop::kDuplicateOffer ? 'd' : '!';
    out_ = {};
    return told;
  }
  std::string Poll() {
    requests_.Poll(now_, out_);
    return Told();
  }
  std::string Offer(std::uint32_t from = kPeer, ttl_t ttl = 3) {
    requests_.OnOffer(Entry(EntryType::kOffer, ttl, Endpoint{from, 500}), from, now_, out_);
    return Told();
  }
  std::string Restart(std::uint32_t peer) {
    requests_.OnPeerRestarted(peer, now_, out_);
    return Told();
  }
  std::string Subscribe(eventgroup_t group = kGroup, major_version_t major = 3) {
    requests_.Subscribe(kKey, group, major, now_, out_);
    return Told();
  }
  std::string Acknowledge(ttl_t ttl = 3, std::uint32_t from = kPeer) {
    requests_.OnAcknowledge(Entry(EntryType::kAcknowledge, ttl), from, out_);
    return Told();
  }

  TimePoint now_ = kStart;
  Requests requests_;
  DiscoveryOutput out_;
  std::string finds_;
};

TEST_F(RequestsTest, SearchesAFewTimesAndThenListens) {
  for (int i = 0; i < 100 && requests_.NextDeadline() != kNever; ++i) {
    now_ = requests_.NextDeadline();
    finds_ += Poll();
  }
  EXPECT_EQ(finds_, "????");
  EXPECT_EQ(Offer(), "+");
  EXPECT_EQ(*requests_.FindInstance(kKey.first, {kPeer, 500}), kKey.second);
  EXPECT_EQ(requests_.FindInstance(kKey.first, {kPeer, 501}), nullptr);
}

TEST_F(RequestsTest, AvailabilityEndsByStopOfferExpiryOrRestart) {
  EXPECT_EQ(Offer(), "+");
  EXPECT_EQ(Offer(kOtherPeer, 0), "");  // somebody else's stop offer
  EXPECT_EQ(Offer(0xE0000001), "!");    // at a group's address
  EXPECT_EQ(Offer(kPeer, 0), "-");
  EXPECT_EQ(Offer(), "+");
  now_ += 2s;
  EXPECT_EQ(Offer(), "");  // lasts 3 s more
  now_ += 2s;
  EXPECT_EQ(Poll(), "");
  now_ += 1s;
  EXPECT_EQ(Poll(), "-");
  EXPECT_EQ(Offer(), "+");
  EXPECT_EQ(Restart(kOtherPeer), "");
  EXPECT_EQ(Restart(kPeer), "-");
}

TEST_F(RequestsTest, NewcomerTakesOverOnceAndTwoProvidersDoNotFlap) {
  EXPECT_EQ(Offer(kPeer), "+");
  EXPECT_EQ(Offer(kOtherPeer), "-+");
  EXPECT_EQ(requests_.Find(kKey)->peer, kOtherPeer);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Offer(kPeer), "d");
    EXPECT_EQ(Offer(kOtherPeer), "");
  }
  EXPECT_EQ(Offer(kOtherPeer, 0), "-");
  EXPECT_EQ(Offer(kPeer), "+");  // the one who is left
}

TEST_F(RequestsTest, SubscriptionIsKeptAliveAndRestored) {
  EXPECT_EQ(Subscribe(), "");
  EXPECT_EQ(Offer(), "+s1");
  EXPECT_EQ(Acknowledge(3, kOtherPeer), "");  // not the provider
  EXPECT_EQ(Acknowledge(), "a");
  EXPECT_EQ(Offer(), "s1");      // renews
  EXPECT_EQ(Acknowledge(), "");  // nothing new
  now_ += 1500ms;                // no offer came in time
  EXPECT_EQ(Poll(), "s1");

  EXPECT_EQ(Offer(kPeer, 0), "-");
  EXPECT_EQ(Offer(kOtherPeer), "+s2");
  EXPECT_EQ(Acknowledge(3, kOtherPeer), "a");
  requests_.Renew(kKey, kGroup, now_, out_);
  EXPECT_EQ(Told(), "u2s2");
  requests_.Unsubscribe(kKey, kGroup, out_);
  EXPECT_EQ(Told(), "u2");
  EXPECT_EQ(Offer(kOtherPeer), "");
}

TEST_F(RequestsTest, RejectedSubscriptionIsToldOnceAndTriedAgain) {
  EXPECT_EQ(Subscribe(), "");
  EXPECT_EQ(Subscribe(kGroup + 1, 4), "");  // in a version that is not offered
  EXPECT_EQ(Offer(), "+s1");
  EXPECT_EQ(Subscribe(), "");  // under way
  EXPECT_EQ(Acknowledge(0), "r");
  EXPECT_EQ(Offer(), "s1");
  EXPECT_EQ(Acknowledge(0), "");
  EXPECT_EQ(Subscribe(), "s1");  // who asks again gets an answer again
  EXPECT_EQ(Acknowledge(0), "r");
  EXPECT_EQ(Acknowledge(), "a");
  EXPECT_EQ(Subscribe(), "");
}

TEST_F(RequestsTest, ReleaseEndsTheSubscriptionQuietly) {
  EXPECT_EQ(Subscribe(), "");
  EXPECT_EQ(Offer(), "+s1");
  requests_.Release(kKey, out_);
  EXPECT_EQ(Told(), "u1");
  EXPECT_EQ(requests_.Find(kKey), nullptr);
}

}  // namespace
}  // namespace vsomeip_v3::embedded
