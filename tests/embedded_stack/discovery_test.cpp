// Discovery without sockets and clocks: entries and points in time go in, entries and changes come out.
#include <algorithm>

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
  struct Case {
    service_t service;
    instance_t instance;
    major_version_t major;
    minor_version_t minor;
    bool answered;
  };
  const Case cases[] = {{0x4711, 1, 3, 7, true},          {0x4711, ANY_INSTANCE, ANY_MAJOR, ANY_MINOR, true},
                        {0x4711, 1, 3, 6, true},          {0x4711, 1, 3, 8, false},
                        {0x4711, 1, 4, ANY_MINOR, false}, {0x4711, 2, 3, 7, false},
                        {0x4712, 1, 3, 7, false}};
  for (const bool is_public : {false, true}) {
    for (const Case& test : cases) {
      DiscoveryEntry find = Entry(EntryType::kFind);
      std::tie(find.service, find.instance, find.major, find.minor) =
          std::tie(test.service, test.instance, test.major, test.minor);
      DiscoveryOutput out;
      offers_.OnFind(find, kPeer, now_, out);
      ASSERT_EQ(out.entries.size(), test.answered && is_public ? 1U : 0U);
      EXPECT_TRUE(out.entries.empty() || out.entries[0].to == kPeer);
    }
    now_ += 50ms;
    Poll();
  }
}

TEST_F(OffersTest, SubscriptionsAreAcceptedOrRejected) {
  struct Case {
    const char* what;
    DiscoveryEntry entry;
    bool accepted;
  };
  std::vector<Case> cases;
  const auto add = [&cases](const char* what, bool accepted, const std::function<void(DiscoveryEntry&)>& change) {
    cases.push_back({what, Entry(EntryType::kSubscribe), accepted});
    change(cases.back().entry);
  };
  add("good", true, [](DiscoveryEntry& e) { e.counter = 5; });
  add("other service", false, [](DiscoveryEntry& e) { e.service = 1; });
  add("other version", false, [](DiscoveryEntry& e) { e.major = 4; });
  add("unknown eventgroup", false, [](DiscoveryEntry& e) { e.eventgroup = 9; });
  add("no endpoint", false, [](DiscoveryEntry& e) { e.udp.reset(); });
  add("port 0", false, [](DiscoveryEntry& e) { e.udp->port = 0; });
  add("multicast endpoint", false, [](DiscoveryEntry& e) { e.udp->address = 0xE0000001; });
  add("broken options", false, [](DiscoveryEntry& e) { e.bad_options = true; });
  for (const Case& test : cases) {
    const DiscoveryOutput out = Subscribe(test.entry);
    ASSERT_EQ(out.entries.size(), 1U) << test.what;
    const DiscoveryEntry& answer = out.entries[0].entry;
    EXPECT_EQ(out.entries[0].to, kPeer) << test.what;
    EXPECT_EQ(answer.type, EntryType::kAcknowledge) << test.what;
    EXPECT_EQ(answer.ttl, test.accepted ? 3U : 0U) << test.what;
    EXPECT_EQ(answer.counter, test.entry.counter) << test.what;
    EXPECT_EQ(answer.eventgroup, test.entry.eventgroup) << test.what;
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

class RequestsTest : public testing::Test {
 protected:
  RequestsTest() : requests_(DiscoverySettings()) {
    requests_.SetLocalEndpoint({0x7F4D0009, 30509});
    requests_.Request(kKey, ANY_MAJOR, ANY_MINOR, now_);
    Poll();
  }
  void Poll() {
    out_ = {};
    requests_.Poll(now_, out_);
  }
  void Offer(std::uint32_t from = kPeer, ttl_t ttl = 3) {
    out_ = {};
    requests_.OnOffer(Entry(EntryType::kOffer, ttl, Endpoint{from, 500}), from, now_, out_);
  }
  void Acknowledge(ttl_t ttl = 3, std::uint32_t from = kPeer) {
    out_ = {};
    requests_.OnAcknowledge(Entry(EntryType::kAcknowledge, ttl), from, out_);
  }
  std::vector<bool> Changes() const {
    std::vector<bool> changes;
    for (const auto& change : out_.availability) changes.push_back(change.available);
    return changes;
  }
  std::vector<ttl_t> SentSubscribes() const {
    std::vector<ttl_t> sent;
    for (const auto& outgoing : out_.entries) {
      if (outgoing.entry.type == EntryType::kSubscribe) sent.push_back(outgoing.entry.ttl);
    }
    return sent;
  }
  using Flags = std::vector<bool>;
  using Ttls = std::vector<ttl_t>;

  TimePoint now_ = kStart;
  Requests requests_;
  DiscoveryOutput out_;
};

TEST_F(RequestsTest, SearchesAFewTimesAndThenListens) {
  int finds = static_cast<int>(out_.entries.size());
  while (requests_.NextDeadline() != kNever && finds < 100) {
    now_ = requests_.NextDeadline();
    Poll();
    finds += static_cast<int>(out_.entries.size());
  }
  EXPECT_EQ(finds, 4);
  Offer();
  EXPECT_EQ(Changes(), Flags{true});
  EXPECT_EQ(*requests_.FindInstance(kKey.first, {kPeer, 500}), kKey.second);
  EXPECT_EQ(requests_.FindInstance(kKey.first, {kPeer, 501}), nullptr);
}

TEST_F(RequestsTest, WhatIsNotRequestedIsIgnored) {
  DiscoveryEntry other = Entry(EntryType::kOffer);
  other.instance = 2;
  requests_.OnOffer(other, kPeer, now_, out_);
  EXPECT_EQ(requests_.Available().size(), 0U);
}

TEST_F(RequestsTest, AvailabilityEndsByStopOfferExpiryOrRestart) {
  Offer();
  Offer(kOtherPeer, 0);  // somebody else's stop offer
  EXPECT_EQ(Changes(), Flags{});
  Offer(kPeer, 0);
  EXPECT_EQ(Changes(), Flags{false});

  Offer();
  now_ += 2s;
  Offer();  // lasts 3 s more
  EXPECT_EQ(Changes(), Flags{});
  now_ += 2s;
  Poll();
  EXPECT_EQ(Changes(), Flags{});
  now_ += 1s;
  Poll();
  EXPECT_EQ(Changes(), Flags{false});

  Offer();
  requests_.OnPeerRestarted(kOtherPeer, now_, out_);
  out_ = {};
  requests_.OnPeerRestarted(kPeer, now_, out_);
  EXPECT_EQ(Changes(), Flags{false});
}

TEST_F(RequestsTest, NewcomerTakesOverOnceAndTwoProvidersDoNotFlap) {
  Offer(kPeer);
  Offer(kOtherPeer);
  EXPECT_EQ(Changes(), (Flags{false, true}));
  EXPECT_EQ(requests_.Find(kKey)->peer, kOtherPeer);
  for (int i = 0; i < 5; ++i) {
    Offer(kPeer);
    EXPECT_EQ(Changes(), Flags{});
    EXPECT_EQ(out_.drops, std::vector<Drop>{Drop::kDuplicateOffer});
    Offer(kOtherPeer);
    EXPECT_EQ(Changes(), Flags{});
  }
  Offer(kOtherPeer, 0);
  Offer(kPeer);  // the one who is left
  EXPECT_EQ(Changes(), Flags{true});
}

TEST_F(RequestsTest, SubscriptionIsKeptAliveAndRestored) {
  requests_.Subscribe(kKey, kGroup, 3, now_, out_);
  EXPECT_EQ(SentSubscribes(), Ttls{});
  Offer();
  EXPECT_EQ(SentSubscribes(), Ttls{3});
  EXPECT_EQ(out_.entries.back().to, kPeer);
  Acknowledge(3, kOtherPeer);  // not the provider
  EXPECT_EQ(out_.subscriptions.size(), 0U);
  Acknowledge();
  ASSERT_EQ(out_.subscriptions.size(), 1U);
  EXPECT_TRUE(out_.subscriptions[0].accepted);
  Offer();  // renews
  EXPECT_EQ(SentSubscribes(), Ttls{3});
  Acknowledge();
  EXPECT_EQ(out_.subscriptions.size(), 0U);  // nothing new
  now_ += 1500ms;                            // no offer came in time
  Poll();
  EXPECT_EQ(SentSubscribes(), Ttls{3});

  Offer(kPeer, 0);
  Offer(kOtherPeer);
  EXPECT_EQ(out_.entries.back().to, kOtherPeer);
  Acknowledge(3, kOtherPeer);
  EXPECT_EQ(out_.subscriptions.size(), 1U);

  requests_.Renew(kKey, kGroup, now_, out_ = {});
  EXPECT_EQ(SentSubscribes(), (Ttls{0, 3}));
  requests_.Unsubscribe(kKey, kGroup, out_ = {});
  EXPECT_EQ(SentSubscribes(), Ttls{0});
  Offer(kOtherPeer);
  EXPECT_EQ(SentSubscribes(), Ttls{});
}

TEST_F(RequestsTest, RejectedSubscriptionIsToldOnceAndTriedAgain) {
  requests_.Subscribe(kKey, kGroup, 3, now_, out_);
  requests_.Subscribe(kKey, kGroup + 1, 4, now_, out_);  // in a version that is not offered
  Offer();
  EXPECT_EQ(SentSubscribes(), Ttls{3});
  Acknowledge(0);
  ASSERT_EQ(out_.subscriptions.size(), 1U);
  EXPECT_FALSE(out_.subscriptions[0].accepted);
  Offer();
  EXPECT_EQ(SentSubscribes(), Ttls{3});
  Acknowledge(0);
  EXPECT_EQ(out_.subscriptions.size(), 0U);
  Acknowledge();
  ASSERT_EQ(out_.subscriptions.size(), 1U);
  EXPECT_TRUE(out_.subscriptions[0].accepted);
}

TEST_F(RequestsTest, ReleaseEndsTheSubscriptionQuietly) {
  requests_.Subscribe(kKey, kGroup, 3, now_, out_);
  Offer();
  requests_.Release(kKey, out_ = {});
  EXPECT_EQ(SentSubscribes(), Ttls{0});
  EXPECT_EQ(Changes(), Flags{});
  EXPECT_EQ(requests_.Find(kKey), nullptr);
}

}  // namespace
}  // namespace vsomeip_v3::embedded
