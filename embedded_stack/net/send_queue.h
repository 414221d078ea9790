#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "embedded_stack/wire/discovery_message.h"
#include "embedded_stack/wire/message_header.h"

namespace vsomeip_v3::embedded {

using SharedBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

// Messages that cannot go out at once: those in segments, and those that must not overtake them. Targets take turns,
// the messages of one target keep their order. Not synchronized.
class SendQueue {
 public:
  // At most this many datagrams are sent in each interval: about 11 MB/s, which a receiver with the default buffer of
  // 208 KiB follows even if it is not scheduled for 15 ms.
  static constexpr std::size_t kDatagramsPerInterval = 8;
  static constexpr std::size_t kMaxBytes = 256U << 20U;

  using Target = std::pair<std::size_t, Endpoint>;  // index of the local socket, and the peer

  // False if the queue is full.
  bool Push(const Target& target, const MessageHeader& header, SharedBytes payload);

  // Hands out the datagrams of one interval. `send` returns false if the socket takes no more for now.
  void Flush(const std::function<bool(const Target&, const std::vector<std::uint8_t>&)>& send);

  bool Empty() const { return jobs_.empty(); }
  bool HasJobsFor(const Target& target) const { return jobs_.find(target) != jobs_.end(); }

 private:
  struct Job {
    MessageHeader header;
    SharedBytes payload;
    std::size_t sent = 0;  // bytes of the payload
  };
  static std::vector<std::uint8_t> NextDatagram(const Job& job);

  std::map<Target, std::deque<Job>> jobs_;  // no empty queues
  Target last_served_;
  std::size_t bytes_ = 0;
};

// The whole datagram of a message that needs no segments.
std::vector<std::uint8_t> EncodeMessage(const MessageHeader& header, const std::vector<std::uint8_t>& payload);

}  // namespace vsomeip_v3::embedded
