// Segmented messages: taken apart by the send queue, put together by the reassembler.
#include <algorithm>

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

// A queue with a kernel below it, which takes `room` datagrams, and a clock.
class SendQueueTest : public testing::Test {
 protected:
  void Push(const SendQueue::Target& target, std::size_t size) {
    ASSERT_TRUE(queue_.Push(target, Header(), std::make_shared<const Bytes>(size)));
  }
  TimePoint Flush() {
    return queue_.Flush(now_, [this](const SendQueue::Target& target, Datagrams& datagrams) {
      const std::size_t taken = std::min(datagrams.Count(), room_);
      room_ -= taken;
      for (std::size_t i = 0; i < taken; ++i) {
        iovec* const parts = datagrams.Parts(i);
        const auto* const head = static_cast<const std::uint8_t*>(parts[0].iov_base);
        Bytes datagram(head, head + parts[0].iov_len);
        const auto* const body = static_cast<const std::uint8_t*>(parts[1].iov_base);
        datagram.insert(datagram.end(), body, body + parts[1].iov_len);
        charged_ += parts[1].iov_len + SendQueue::kDatagramOverhead;
        sent_.emplace_back(target, std::move(datagram));
      }
      return taken;
    });
  }
  SendQueue queue_{20 * SendQueue::kDefaultReceiveBuffer};
  TimePoint now_{std::chrono::hours(1)};
  std::size_t room_ = SIZE_MAX;
  std::size_t charged_ = 0;
  std::vector<std::pair<SendQueue::Target, Bytes>> sent_;
  const SendQueue::Target one_{0, {1, 1}};
  const SendQueue::Target two_{0, {2, 1}};
};

TEST_F(SendQueueTest, TargetsTakeTurnsAndKeepTheirOrder) {
  Push(one_, 20 * 1392);
  Push(one_, 1);
  Push(two_, 1);
  EXPECT_FALSE(queue_.Admit(one_, 1, now_));  // nothing overtakes what waits
  EXPECT_EQ(Flush(), kNever);
  ASSERT_EQ(sent_.size(), 22U);
  EXPECT_EQ(sent_[Datagrams::kMax].first, two_);  // not behind the large one
  EXPECT_EQ(sent_.back().first, one_);            // not before the large one
  EXPECT_EQ(sent_.back().second.size(), 17U);
  EXPECT_TRUE(queue_.Admit(one_, 1, now_));
}

// Whatever is sent by whichever way, in any 15 ms no more goes to one receiver than its buffer holds.
TEST_F(SendQueueTest, ReceiverThatSleepsHasRoomForAllThatComes) {
  const SendQueue::Target other_port{1, {1, 2}};
  EXPECT_TRUE(queue_.Admit(one_, SendQueue::kAtOnce, now_));
  EXPECT_FALSE(queue_.Admit(other_port, 20000, now_)) << "the same receiver";
  for (const std::uint32_t address : {2U, 1U + 64U, 1U + 4096U, 1U + (1U << 24U)}) {
    EXPECT_TRUE(queue_.Admit({0, {address, 1}}, SendQueue::kAtOnce, now_)) << "another one";
  }
  for (std::uint32_t address = 1000; address < 2000; ++address) queue_.Admit({0, {address, 1}}, 20000, now_);
  EXPECT_TRUE(queue_.Admit(one_, 1, now_)) << "what is small needs no allowance";
  EXPECT_TRUE(queue_.Admit({0, {0x7F4D0001, 1}}, 1200000, now_)) << "has the same buffer as we have, by its address";
  for (const auto& target : {one_, other_port, one_}) Push(target, 2000000);
  for (int i = 0; i < 1000; ++i) EXPECT_FALSE(queue_.Admit(one_, 100, now_));
  Flush();
  EXPECT_TRUE(sent_.empty()) << "the allowance is used up, and only time renews it";
  // When, and all that had gone out before. What went at once is the first.
  std::vector<std::pair<TimePoint, std::size_t>> course{{now_, 0}};
  charged_ = SendQueue::kAtOnce + DatagramCount(SendQueue::kAtOnce) * SendQueue::kDatagramOverhead;
  const TimePoint begin = now_;
  for (TimePoint next = now_; next != kNever; next = Flush()) {
    ASSERT_GT(next + 1ns, now_);
    course.emplace_back(now_ = next, charged_);
  }
  EXPECT_EQ(sent_.size(), 3 * DatagramCount(2000000));
  course.emplace_back(now_ + 1s, charged_);
  for (std::size_t i = 0, end = 0; i < course.size(); ++i) {
    while (end < course.size() && course[end].first - course[i].first <= SendQueue::kStall) ++end;
    ASSERT_LE(course[std::min(end, course.size() - 1)].second - course[i].second, SendQueue::kDefaultReceiveBuffer)
        << i;
  }
  const std::chrono::duration<double> took = now_ - begin;
  EXPECT_GT(6e6 / took.count(), 10e6) << "bytes per second";

  const SendQueue::Target neighbour{0, {1, 99}};  // the same receiver
  Push(one_, 2000000);
  const std::size_t before = sent_.size();
  for (int milliseconds = 0; milliseconds < 1000; ++milliseconds, now_ += 1ms) {
    for (int i = 0; i < 1000; ++i) ASSERT_TRUE(queue_.Admit(neighbour, 1000, now_));
    Flush();
  }
  EXPECT_EQ(sent_.size() - before, DatagramCount(2000000)) << "a flood of small ones starves nobody";
}

TEST_F(SendQueueTest, WhatWaitsForOneReceiverLeavesRoomForAnother) {
  const auto huge = std::make_shared<const Bytes>(kMaxPayload);
  const std::size_t each = kMaxPayload + SendQueue::kJobOverhead;
  const auto fill = [this](const SendQueue::Target& target, const SharedBytes& payload) {
    std::size_t accepted = 0;
    while (accepted < SendQueue::kMaxBytes && queue_.Push(target, Header(), payload)) ++accepted;
    return accepted;
  };
  room_ = 0;
  ASSERT_EQ(fill(two_, huge), SendQueue::kMaxBytes / 2 / each) << "half of it";
  EXPECT_EQ(fill({1, {2, 99}}, huge), 0U) << "the same receiver";
  EXPECT_EQ(fill(one_, huge), (SendQueue::kMaxBytes - 7 * each) / 2 / each) << "half of the rest";
  for (std::uint32_t address = 3; address < 1000; ++address) fill({0, {address, 1}}, huge);
  const SendQueue::Target small{0, {1000, 1}};
  const auto nothing = std::make_shared<const Bytes>();
  const std::size_t many = fill(small, nothing);
  EXPECT_GT(many, 0U) << "whoever has nothing waiting";
  EXPECT_LT(many, SendQueue::kMaxBytes / 2 / 100) << "what is small takes memory, too";
  room_ = SIZE_MAX;
  for (TimePoint next = now_; next != kNever; next = Flush()) now_ = next;
  EXPECT_EQ(fill(two_, huge), SendQueue::kMaxBytes / 2 / each) << "as in the beginning";
}

TEST_F(SendQueueTest, WhatTheSocketRefusesIsSentLater) {
  Push(two_, kMaxPayload);
  room_ = 5;
  EXPECT_EQ(Flush(), now_ + SendQueue::kRetry);
  EXPECT_EQ(Flush(), now_ + SendQueue::kRetry);
  EXPECT_EQ(sent_.size(), 5U);
  room_ = 1;
  Flush();
  Reassembler receiver;  // the sixth continues where the socket refused
  for (const auto& [target, datagram] : sent_) {
    const auto segment = DecodeSegment(ByteView(datagram).Sub(kHeaderSize));
    ASSERT_TRUE(segment);
    EXPECT_EQ(receiver.Add(kPeer, *DecodeHeader(datagram), *segment, {}).outcome, Outcome::kIncomplete);
  }
  EXPECT_EQ(receiver.Bytes(), 6 * kSegmentPayload);
}

}  // namespace
}  // namespace vsomeip_v3::embedded
