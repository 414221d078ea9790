#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "embedded_stack/discovery/output.h"
#include "embedded_stack/wire/message_header.h"
#include "embedded_stack/wire/transport_segment.h"

namespace vsomeip_v3::embedded {

using SharedBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

// What waits until it may go out, and how much may go out at once.
//
// UDP holds nobody back, so that a sender must not send more than its receiver's socket has room for until the receiver
// gets to read. Each receiver has an allowance that is used up by all that goes to it and grows with time alone, such
// that what arrives within kStall fits into its buffer. A receiver in the range of addresses that only this stack uses
// has the buffer that the system has granted to us; any other one may have no more than a system grants by default.
// Targets take turns, the messages of one target keep their order.
//
// What waits for one address is never more than what is still free: a single one gets half of kMaxBytes, a second one
// half of the rest, so that it takes many to keep a message of another one out. Not synchronized.
class SendQueue {
 public:
  static constexpr std::size_t kMaxBytes = 256U << 20U;
  static constexpr std::size_t kJobOverhead = 256;       // that a message which waits is charged beyond its payload
  static constexpr std::size_t kAtOnce = 64U << 10U;     // a payload that an unused allowance has room for
  static constexpr std::size_t kDatagramOverhead = 900;  // that the kernel charges beyond the payload's bytes
  static constexpr std::chrono::milliseconds kStall{15};
  static constexpr std::chrono::milliseconds kRetry{1};  // after a socket took no more

  using Target = std::pair<std::size_t, Endpoint>;  // index of the local socket, and the peer
  // Returns how many of the datagrams the socket took.
  using Send = std::function<std::size_t(const Target&, Datagrams&)>;

  // What Linux grants without configuration, as the kernel counts: room for 184 segments.
  static constexpr std::size_t kDefaultReceiveBuffer = 425984;
  // `receive_buffer` is that of this stack's nodes.
  explicit SendQueue(std::size_t receive_buffer);

  // True if a message may go out at once. It is taken to have been sent then. What fits into one datagram need not wait
  // for the allowance, only for its turn.
  bool Admit(const Target& target, std::size_t payload_size, TimePoint now);

  // False if the queue is full for that address. `sent` bytes have gone out already: a multiple of kSegmentPayload.
  bool Push(const Target& target, const MessageHeader& header, SharedBytes payload, std::size_t sent = 0);

  // Sends what may go out now, and returns when there will be more; kNever if nothing waits.
  TimePoint Flush(TimePoint now, const Send& send);

 private:
  struct Job {
    MessageHeader header;
    SharedBytes payload;
    std::size_t sent = 0;  // bytes of the payload
  };
  struct Allowance {
    double used = 0;
    TimePoint since;
  };
  // The allowances of receivers with one size of buffer. One is unused again a few milliseconds after the last message,
  // so that they are as few as who is sent to within that time.
  struct Class {
    explicit Class(std::size_t receive_buffer);
    double burst;                                             // the most that an allowance is
    double per_nanosecond;                                    // that it grows
    std::unordered_map<std::uint32_t, Allowance> allowances;  // by address; those that are unused go now and then
    std::size_t most = 64;                                    // that there may be before that
  };

  Class& ClassOf(const Target& target);
  static void Renew(const Class& receivers, Allowance& allowance, TimePoint now);
  static Allowance& AllowanceOf(Class& receivers, const Target& target, TimePoint now);
  void Release(std::uint32_t address, std::size_t size);

  Class own_;
  Class others_{kDefaultReceiveBuffer};
  std::map<Target, std::deque<Job>> jobs_;  // no empty queues
  Target last_served_;
  std::map<std::uint32_t, std::size_t> waiting_;  // bytes for each address in jobs_
  std::size_t bytes_ = 0;                         // for all of them
};

}  // namespace vsomeip_v3::embedded
