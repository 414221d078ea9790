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
constexpr ttl_t kForever = 0xFFFFFF;
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
  PeerTable peers([](std::uint32_t) { return false; });
  EXPECT_EQ(peers.Next(std::nullopt).id, 1);
  EXPECT_EQ(peers.Next(kPeer).id, 1);  // counted for each peer
  for (int i = 2; i <= 0xFFFF; ++i) EXPECT_TRUE(peers.Next(kPeer).reboot);
  const PeerTable::Session wrapped = peers.Next(kPeer);
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
  PeerTable peers([](std::uint32_t) { return false; });
  for (std::size_t i = 0; i < std::size(steps); ++i) {
    EXPECT_EQ(peers.Heard(kPeer, steps[i].multicast, steps[i].session), steps[i].restarted) << i;
  }
}

// However many others speak: the session of one in use goes on in both directions, and nobody is told a lower one.
TEST(PeerTableTest, PeersInUseAreNotForgottenAndWeNeverLookRestarted) {
  std::set<std::uint32_t> in_use{kPeer};
  PeerTable peers([&](std::uint32_t peer) { return in_use.count(peer) != 0; });
  peers.Heard(kPeer, false, {7, true});
  for (const std::uint32_t peer : {kPeer, kOtherPeer, kOtherPeer}) peers.Next(peer);
  for (std::uint32_t peer = 0; peer < 5000; ++peer) EXPECT_FALSE(peers.Heard(peer, true, {1, true}));
  EXPECT_EQ(peers.Size(), PeerTable::kMaxPeers);
  EXPECT_EQ(peers.Next(kPeer).id, 2);
  EXPECT_EQ(peers.Next(kOtherPeer).id, 3);
  EXPECT_TRUE(peers.Heard(kPeer, false, {7, true}));
  for (std::uint32_t peer = 0; peer < 5000; ++peer) {
    in_use.insert(peer);
    peers.Heard(peer, true, {2, true});
  }
  EXPECT_GE(peers.Size(), 5000U);
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
  now_ = offers_.NextDeadline();
  Poll();
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

TEST_F(OffersTest, AnswersMayBeDelayedAndAreLimited) {
  DiscoverySettings settings;
  settings.request_response_delay = 20ms;
  Offers offers(settings, nullptr);
  offers.Add(kKey, {3, 7, {0x7F4D0100, 30509}, 0}, now_);
  DiscoveryOutput out;
  offers.Poll(now_, out);
  DiscoveryEntry find = Entry(EntryType::kFind);
  std::tie(find.major, find.minor) = std::make_tuple(ANY_MAJOR, ANY_MINOR);
  out = {};
  for (int i = 0; i < 2000; ++i) offers.OnFind(find, kPeer, now_, out);
  EXPECT_TRUE(out.entries.empty());
  EXPECT_EQ(out.drops.size(), 2000U - 1024U);
  EXPECT_EQ(offers.NextDeadline(), now_ + 20ms);
  now_ += 20ms;
  offers.Poll(now_, out);
  ASSERT_EQ(out.entries.size(), 1024U);
  EXPECT_EQ(out.entries[0].to, kPeer);
  const DiscoveryEntry& answer = out.entries[0].entry;
  EXPECT_EQ(std::make_tuple(answer.type, answer.major, answer.minor, answer.udp->port),
            std::make_tuple(EntryType::kOffer, 3, 7U, 30509));
  EXPECT_GT(offers.NextDeadline(), now_ + 100ms);
  offers.AnnounceAgain(kKey, now_);
  EXPECT_EQ(offers.NextDeadline(), now_);
  out = {};
  offers.Poll(now_, out);
  EXPECT_EQ(out.entries.size(), 1U);
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
      {"another one's endpoint", false, [](DiscoveryEntry& e) { e.udp->address = kOtherPeer; }},
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
    EXPECT_TRUE(out.drops.empty()) << test.what;
  }
}

TEST_F(OffersTest, OnlyNewSubscribersGetTheValuesAndTheyLastUntilTheyStopExpireOrRestart) {
  const DiscoveryEntry subscribe = Entry(EntryType::kSubscribe);
  const auto subscribe_other = [&] { Subscribe(Entry(EntryType::kSubscribe, 3, Endpoint{kOtherPeer, 1}), kOtherPeer); };
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 1U);
  now_ += 2s;
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 0U);  // renewed
  now_ += 2s;
  Poll();
  EXPECT_EQ(SubscriberCount(), 1U);
  now_ += 1s;
  EXPECT_EQ(SubscriberCount(), 0U);  // expired
  EXPECT_EQ(Subscribe(subscribe).subscribers.size(), 1U);
  EXPECT_TRUE(Subscribe(Entry(EntryType::kSubscribe, 0), kOtherPeer).entries.empty());  // not its own
  EXPECT_EQ(SubscriberCount(), 1U);
  EXPECT_TRUE(Subscribe(Entry(EntryType::kSubscribe, 0)).entries.empty());  // stopped
  EXPECT_EQ(SubscriberCount(), 0U);
  Subscribe(subscribe);
  subscribe_other();
  offers_.OnPeerRestarted(kPeer, now_);
  EXPECT_EQ(offers_.Subscribers(kKey, {kGroup}, now_), (std::set<Endpoint>{{kOtherPeer, 1}}));
  now_ += 1s;
  Poll();
  EXPECT_FALSE(offers_.HasPeer(kPeer));
  EXPECT_TRUE(offers_.HasPeer(kOtherPeer));
  DiscoveryOutput out;
  offers_.Remove(kKey, out);
  EXPECT_FALSE(offers_.HasPeer(kOtherPeer));
  EXPECT_EQ(offers_.FindInstance(kKey.first, 0), nullptr);
}

// By stopping, by restarting, or by both: whoever comes back is subscribed at once and gets the values after a while.
TEST_F(OffersTest, ValuesGoToOneEndpointOnceInAnInterval) {
  const DiscoveryEntry subscribe = Entry(EntryType::kSubscribe);
  std::size_t values = 0;
  for (int i = 0; i < 40; ++i) {
    values += Subscribe(subscribe).subscribers.size();
    EXPECT_EQ(SubscriberCount(), 1U);
    if (i % 2 == 0) Subscribe(Entry(EntryType::kSubscribe, 0));
    if (i % 3 == 0) offers_.OnPeerRestarted(kPeer, now_);
    now_ += 10ms;
    values += Poll().subscribers.size();
  }
  EXPECT_EQ(values, 1U);
  Subscribe(subscribe);
  EXPECT_EQ(offers_.NextDeadline(), kStart + 500ms);
  now_ = kStart + 500ms;
  EXPECT_EQ(Poll().subscribers.size(), 1U);
  EXPECT_EQ(Poll().subscribers.size(), 0U);
}

// All of them that one peer may have, in one step for each: then a newcomer, and who was served goes on to be served.
TEST_F(OffersTest, SubscribersAreBoundedInAllAndForEachPeer) {
  const auto subscribe = [&](std::uint32_t peer, std::size_t port) {
    const Endpoint endpoint{peer, static_cast<port_t>(port)};
    return Subscribe(Entry(EntryType::kSubscribe, kForever, endpoint), peer).entries[0].entry.ttl != 0;
  };
  for (std::uint32_t peer = 0; peer < 20; ++peer) {
    for (std::size_t port = 1; port <= Offers::kMaxSubscriptionsOfPeer; ++port) subscribe(kPeer + peer, port);
    EXPECT_FALSE(subscribe(kPeer + peer, 60000));
  }
  EXPECT_TRUE(subscribe(kPeer + 20, 1)) << "twenty peers leave room for one more";
  for (std::uint32_t peer = 21; peer < 1000; ++peer) subscribe(kPeer + peer, 1);
  EXPECT_EQ(SubscriberCount(), Offers::kMaxSubscriptions);
  EXPECT_FALSE(subscribe(kPeer + 1000, 1));
  EXPECT_TRUE(subscribe(kPeer, 1));
  Subscribe(Entry(EntryType::kSubscribe, 0, Endpoint{kPeer, 1}));
  now_ += 1s;
  Poll();
  EXPECT_TRUE(subscribe(kPeer + 1000, 1));
  now_ += 301s;  // nothing lasts for ever
  Poll();
  EXPECT_EQ(SubscriberCount(), 0U);
  EXPECT_FALSE(offers_.HasPeer(kPeer));
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
  std::string Offer(std::uint32_t from = kPeer, ttl_t ttl = 3, bool multicast = true) {
    requests_.OnOffer(Entry(EntryType::kOffer, ttl, Endpoint{from, 500}), from, multicast, now_, out_);
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
  EXPECT_EQ(now_ - kStart, 1400ms);
  EXPECT_EQ(Offer(), "+");
  EXPECT_EQ(requests_.NextDeadline(), now_ + 3s);
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
  EXPECT_EQ(Offer(kPeer, kForever), "+");
  now_ += 299s;
  EXPECT_EQ(Poll(), "");
  now_ += 1s;
  EXPECT_EQ(Poll(), "-");
}

// It was sent before the stop, but is read after it.
TEST_F(RequestsTest, AnswerToAFindDoesNotBringBackWhatHasGone) {
  for (const bool is_known : {true, false}) {
    EXPECT_TRUE(!is_known || Offer() == "+");
    EXPECT_EQ(Offer(kPeer, 0), is_known ? "-" : "");
    EXPECT_EQ(Offer(kPeer, 3, false), "");
    EXPECT_EQ(Offer(kOtherPeer, 3, false), "+");  // another one's
    EXPECT_EQ(Offer(kOtherPeer, 0), "-");
    EXPECT_EQ(Offer(kPeer), "+");  // offered again
    EXPECT_EQ(Offer(kPeer, 3, false), "");
    EXPECT_EQ(Offer(kPeer, 0), "-");
    now_ += 1s;
    EXPECT_EQ(Offer(kPeer, 3, false), "+");
    EXPECT_EQ(Offer(kPeer, 0), "-");
    now_ += 1s;
  }
}

TEST_F(RequestsTest, OnlyOffersInTheVersionAskedFor) {
  const auto offer = [&](instance_t instance, major_version_t major, minor_version_t minor) {
    DiscoveryEntry entry = Entry(EntryType::kOffer);
    std::tie(entry.instance, entry.major, entry.minor) = std::tie(instance, major, minor);
    requests_.OnOffer(entry, kPeer, true, now_, out_);
    return Told();
  };
  DiscoveryOutput released;
  requests_.Release(kKey, released);
  now_ = requests_.NextDeadline();
  EXPECT_EQ(Poll(), "");
  EXPECT_EQ(requests_.NextDeadline(), kNever) << "the search goes on";
  EXPECT_EQ(offer(1, 3, 7), "");
  requests_.Request({kKey.first, ANY_INSTANCE}, 3, 7, now_);
  requests_.Request({kKey.first, 9}, 4, ANY_MINOR, now_);
  requests_.Poll(now_, out_);
  ASSERT_EQ(out_.entries.size(), 2U);
  EXPECT_EQ(out_.entries[1].entry.major, 3);
  EXPECT_EQ(out_.entries[1].entry.minor, 7U);
  EXPECT_EQ(Told(), "??");
  EXPECT_EQ(offer(1, 4, 7), "");
  EXPECT_EQ(offer(1, 3, 6), "");
  EXPECT_EQ(offer(1, 3, 7), "+");
  EXPECT_EQ(offer(2, 3, 8), "+");
  EXPECT_EQ(offer(9, 4, 0), "+");
}

// What is asked for by its name is found even so.
TEST_F(RequestsTest, InstancesAreBoundedInAllAndForEachPeer) {
  requests_.Request({kKey.first, ANY_INSTANCE}, ANY_MAJOR, ANY_MINOR, now_);
  DiscoveryEntry entry = Entry(EntryType::kOffer, kForever);
  for (std::uint32_t peer = 1; peer <= 20; ++peer) {
    for (std::size_t i = 0; i <= Requests::kMaxInstancesOfPeer; ++i) {
      entry.instance = static_cast<instance_t>(peer << 11U | i);
      requests_.OnOffer(entry, kPeer + peer, true, now_, out_);
    }
    const std::size_t others = peer * Requests::kMaxInstancesOfPeer;
    EXPECT_EQ(requests_.Available().size(), std::min(others, Requests::kMaxInstances));
  }
  Told();
  EXPECT_EQ(Offer(kPeer + 1), "+");
  requests_.OnPeerRestarted(kPeer + 1, now_, out_);
  EXPECT_FALSE(requests_.HasPeer(kPeer + 1));
  Told();
  entry.instance = 20U << 11U;
  requests_.OnOffer(entry, kPeer + 20, true, now_, out_);
  EXPECT_EQ(Told(), "+");
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

// The provider that still offers comes back, however long the newcomer has said that it lasts.
TEST_F(RequestsTest, SilentNewcomerGivesWayToTheOneThatStillOffers) {
  EXPECT_EQ(Offer(kPeer), "+");
  for (std::uint32_t liar = kOtherPeer; liar < kOtherPeer + 20; ++liar) {
    EXPECT_EQ(Offer(liar, kForever), "-+");
    now_ += 500ms;
    EXPECT_EQ(Offer(kPeer), "d");
    EXPECT_EQ(Offer(kPeer), "d");  // twice, but it was just heard
    now_ += 1s;
    EXPECT_EQ(Offer(kPeer), "-+");
    EXPECT_EQ(requests_.Find(kKey)->peer, kPeer);
    EXPECT_EQ(Offer(liar, kForever), "d");
  }
  // Two that live, and offer rarely.
  EXPECT_EQ(Offer(kOtherPeer), "-+");  // so long ago that it is forgotten
  for (int i = 0; i < 5; ++i) {
    now_ += 1400ms;
    EXPECT_EQ(Offer(kPeer), "d");
    now_ += 1400ms;
    EXPECT_EQ(Offer(kOtherPeer), "");
  }
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
  now_ += 1s;
  EXPECT_EQ(Poll(), "s1");
  EXPECT_EQ(Offer(), "s1");
  EXPECT_EQ(Acknowledge(0), "");
  EXPECT_EQ(Subscribe(), "s1");  // who asks again gets an answer again
  EXPECT_EQ(Acknowledge(0), "r");
  EXPECT_EQ(Acknowledge(), "a");
  EXPECT_EQ(Subscribe(), "");
}

TEST_F(RequestsTest, ReleaseEndsTheSubscriptionQuietly) {
  EXPECT_EQ(Subscribe(kGroup + 1, 4), "");  // in a version that is not offered
  EXPECT_EQ(Subscribe(), "");
  EXPECT_EQ(Offer(), "+s1");
  requests_.Unsubscribe(kKey, kGroup + 1, out_);
  EXPECT_EQ(Told(), "");
  requests_.Release(kKey, out_);
  EXPECT_EQ(Told(), "u1");
  EXPECT_EQ(requests_.Find(kKey), nullptr);
}

}  // namespace
}  // namespace vsomeip_v3::embedded
