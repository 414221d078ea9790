// Segmented messages: taken apart by the send queue, put together by the reassembler.
#include <gtest/gtest.h>

#include "embedded_stack/net/reassembler.h"
#include "embedded_stack/net/send_queue.h"

namespace vsomeip_v3::embedded {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Outcome = Reassembler::Outcome;
using namespace std::chrono_literals;

constexpr Endpoint kPeer{0x7F000001, 1000};

MessageHeader Header(session_t session = 1) {
  MessageHeader header;
  header.session = session;
  return header;
}

struct Part {
  std::uint32_t offset;
  std::size_t size;
  bool more;
};

class ReassemblerTest : public testing::Test {
 protected:
  Outcome Add(const Part& part, session_t session = 1, Endpoint peer = kPeer) {
    Bytes bytes(part.size);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>((part.offset + i) * 7 >> 4U);
    result_ = reassembler_.Add(peer, Header(session), {part.offset, part.more, bytes}, now_);
    return result_.outcome;
  }
  Reassembler reassembler_;
  Reassembler::Result result_;
  Reassembler::TimePoint now_{};
};

TEST_F(ReassemblerTest, SequencesOfSegments) {
  struct Case {
    const char* what;
    std::vector<Part> parts;
    Outcome last;
  };
  const Case cases[] = {
      {"in order", {{0, 32, true}, {32, 16, true}, {48, 5, false}}, Outcome::kComplete},
      {"one only", {{0, 7, false}}, Outcome::kComplete},
      {"backwards", {{48, 5, false}, {32, 16, true}, {0, 32, true}}, Outcome::kComplete},
      {"twice", {{0, 32, true}, {0, 32, true}, {32, 21, false}}, Outcome::kComplete},
      {"early one twice", {{32, 16, true}, {32, 16, true}, {0, 32, true}, {48, 5, false}}, Outcome::kComplete},
      {"gap", {{0, 32, true}, {48, 5, false}}, Outcome::kIncomplete},
      {"overlap", {{0, 32, true}, {16, 32, true}}, Outcome::kBadSegment},
      {"overlap with an early one", {{32, 16, true}, {0, 48, true}}, Outcome::kBadSegment},
      {"behind the end", {{0, 16, true}, {32, 4, false}, {48, 16, true}}, Outcome::kBadSegment},
      {"two ends", {{32, 4, false}, {16, 3, false}}, Outcome::kBadSegment},
      {"end before what is there", {{0, 48, true}, {16, 4, false}}, Outcome::kBadSegment},
      {"end before an early one", {{32, 16, true}, {16, 3, false}}, Outcome::kBadSegment},
      {"offset beyond the limit", {{0xFFFFFFF0, 16, true}}, Outcome::kOverLimit},
      {"end beyond the limit", {{kMaxPayload, 16, true}}, Outcome::kOverLimit},
  };
  session_t session = 0;
  for (const Case& test : cases) {
    ++session;
    Outcome last = Outcome::kIncomplete;
    for (const Part& part : test.parts) last = Add(part, session);
    EXPECT_EQ(last, test.last) << test.what;
    if (test.last != Outcome::kComplete || session == 2) continue;
    ASSERT_EQ(result_.payload.size(), 53U) << test.what;
    for (std::size_t i = 0; i < 53; ++i) ASSERT_EQ(result_.payload[i], static_cast<std::uint8_t>(i * 7 >> 4U)) << i;
  }
}

TEST_F(ReassemblerTest, MessagesOfSeveralSendersAndSessionsDoNotMix) {
  const std::pair<session_t, Endpoint> senders[] = {{1, kPeer}, {2, kPeer}, {1, {0x7F000002, 1000}}};
  for (const auto& [session, peer] : senders) EXPECT_EQ(Add({0, 16, true}, session, peer), Outcome::kIncomplete);
  for (const auto& [session, peer] : senders) EXPECT_EQ(Add({16, 1, false}, session, peer), Outcome::kComplete);
  EXPECT_TRUE(reassembler_.Empty());
  EXPECT_EQ(reassembler_.Bytes(), 0U);
}

TEST_F(ReassemblerTest, MemoryAndTimeAreBounded) {
  for (session_t session = 1; session <= 200; ++session) Add({0, 1392, true}, session);  // one peer, many messages
  EXPECT_LE(reassembler_.Bytes(), Reassembler::kMaxMessagesPerPeer * 1392);
  for (int i = 0; i < 60000; ++i) Add({0, 1392, true}, 300);  // the same segment over and over
  EXPECT_LE(reassembler_.Bytes(), Reassembler::kMaxBytesPerPeer);
  for (std::uint32_t peer = 1; peer <= 80; ++peer) {
    for (std::uint32_t i = 0; i < 1000; ++i) Add({i * 1392, 1392, true}, 1, {peer, 1});
  }
  EXPECT_LE(reassembler_.Bytes(), Reassembler::kMaxBytes);
  now_ += Reassembler::kIdleLimit;
  reassembler_.Expire(now_);
  std::size_t accepted = 0;  // of many peers that say very little
  for (std::uint32_t peer = 1; peer <= 2000; ++peer)
    accepted += Add({0, 16, true}, 1, {peer, 1}) != Outcome::kOverLimit;
  EXPECT_EQ(accepted, Reassembler::kMaxMessages);
  EXPECT_EQ(Add({16, 1, false}, 1, {1, 1}), Outcome::kComplete);

  now_ += Reassembler::kIdleLimit;
  EXPECT_GT(reassembler_.Expire(now_), 0U);
  EXPECT_TRUE(reassembler_.Empty());
  EXPECT_EQ(reassembler_.Bytes(), 0U);

  std::uint32_t offset = 0;
  for (std::chrono::milliseconds age{0}; age < Reassembler::kTotalLimit; age += 500ms, now_ += 500ms) {
    Add({offset++ * 16, 16, true});  // one that drips
    reassembler_.Expire(now_);
    EXPECT_FALSE(reassembler_.Empty());
  }
  EXPECT_EQ(reassembler_.Expire(now_), 1U);
}

TEST(SendQueueTest, TargetsTakeTurnsAndKeepTheirOrder) {
  SendQueue queue;
  const auto large = std::make_shared<const Bytes>(20 * 1392);
  const auto small = std::make_shared<const Bytes>(1);
  const SendQueue::Target one{0, {1, 1}};
  const SendQueue::Target two{0, {2, 1}};
  ASSERT_TRUE(queue.Push(one, Header(), large));
  ASSERT_TRUE(queue.Push(one, Header(), small));
  ASSERT_TRUE(queue.Push(two, Header(), small));
  std::vector<std::pair<SendQueue::Target, std::size_t>> sent;
  const auto send = [&sent](const SendQueue::Target& target, const Bytes& datagram) {
    sent.emplace_back(target, datagram.size());
    return true;
  };
  queue.Flush(send);
  EXPECT_EQ(sent.size(), SendQueue::kDatagramsPerInterval);
  EXPECT_EQ(sent[1].first, two);  // not behind the large one
  EXPECT_FALSE(queue.HasJobsFor(two));
  for (int i = 0; i < 10 && !queue.Empty(); ++i) queue.Flush(send);
  ASSERT_EQ(sent.size(), 22U);
  EXPECT_EQ(sent.back().first, one);  // not before the large one
  EXPECT_EQ(sent.back().second, 17U);
}

TEST(SendQueueTest, WhatTheSocketRefusesIsSentLaterAndTheQueueIsBounded) {
  SendQueue queue;
  const SendQueue::Target target{0, kPeer};
  const auto huge = std::make_shared<const Bytes>(kMaxPayload);
  std::size_t accepted = 0;
  while (accepted < 1000 && queue.Push(target, Header(), huge)) ++accepted;
  EXPECT_EQ(accepted, SendQueue::kMaxBytes / (kMaxPayload + kHeaderSize));
  Bytes first;
  queue.Flush([&first](const auto&, const Bytes& datagram) {
    first = datagram;
    return false;
  });
  queue.Flush([&first](const auto&, const Bytes& datagram) {
    EXPECT_EQ(datagram, first);
    return false;
  });
}

}  // namespace
}  // namespace vsomeip_v3::embedded
