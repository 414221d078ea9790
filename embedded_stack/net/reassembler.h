#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "embedded_stack/wire/discovery_message.h"
#include "embedded_stack/wire/message_header.h"
#include "embedded_stack/wire/transport_segment.h"

namespace vsomeip_v3::embedded {

inline constexpr std::size_t kMaxPayload = 16U << 20U;  // of one message, in either direction

// Puts segmented messages together again. Segments may come a little out of order and more than once; a message whose
// segments overlap, leave a gap for too long or exceed a limit is dropped. Memory grows by the bytes that arrived
// only. Not synchronized, no clock of its own.
class Reassembler {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  static constexpr std::size_t kMaxMessages = 1024;  // senders' addresses can be forged: as many as one likes
  static constexpr std::size_t kMaxMessagesPerPeer = 16;
  static constexpr std::size_t kMaxBytesPerPeer = 2 * kMaxPayload;
  static constexpr std::size_t kMaxBytes = 4 * kMaxPayload;
  static constexpr std::size_t kMaxEarlySegments = 64;
  static constexpr std::size_t kPart = 1U << 20U;
  // In milliseconds, because waiting times are fractions of them.
  static constexpr std::chrono::milliseconds kIdleLimit{1000};
  static constexpr std::chrono::milliseconds kTotalLimit{15000};

  enum class Outcome { kIncomplete, kComplete, kBadSegment, kOverLimit };
  struct Result {
    Outcome outcome = Outcome::kIncomplete;
    std::vector<std::uint8_t> payload;  // if complete
  };

  // `header` is that of the segment.
  Result Add(const Endpoint& from, const MessageHeader& header, const Segment& segment, TimePoint now);

  // Drops what has waited for too long; returns how many messages that were.
  std::size_t Expire(TimePoint now);

  bool Empty() const { return messages_.empty(); }
  std::size_t Bytes() const { return bytes_; }

 private:
  // One per message under way: sender and everything in the header that its segments share.
  using Key = std::tuple<Endpoint, service_t, method_t, client_t, session_t, interface_version_t, std::uint8_t>;
  struct Message {
    void Append(ByteView bytes);
    std::vector<std::uint8_t> Join();

    // Without gaps, from the start. All but the last are kPart or a little less: a larger vector that grows takes so
    // long, once in a while, that other segments are lost meanwhile.
    std::vector<std::vector<std::uint8_t>> parts;
    std::size_t length = 0;                                    // of all
    std::map<std::uint32_t, std::vector<std::uint8_t>> early;  // by offset, behind a gap
    std::optional<std::uint32_t> size;                         // known from the last segment on
    std::size_t charged = 0;
    std::size_t* peer_bytes = nullptr;  // in bytes_per_peer_
    TimePoint started;
    TimePoint last;
  };

  using Messages = std::map<Key, Message>;

  Message* Continue(const Key& key, std::size_t size);
  bool MakeRoom(const Endpoint& from, std::size_t size, const Key& keep);
  static bool Accept(Message& message, const Segment& segment);
  void Erase(Messages::iterator message);

  Messages messages_;
  Messages::value_type* latest_ = nullptr;  // most segments continue it
  std::map<std::uint32_t, std::size_t> bytes_per_peer_;
  std::size_t bytes_ = 0;
};

}  // namespace vsomeip_v3::embedded
