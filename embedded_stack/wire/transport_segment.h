#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <sys/uio.h>

#include "embedded_stack/wire/byte_view.h"
#include "embedded_stack/wire/message_header.h"

namespace vsomeip_v3::embedded {

// SOME/IP-TP: how a message that does not fit into one datagram travels.
inline constexpr std::size_t kMaxUnsegmentedPayload = 1400;
inline constexpr std::size_t kSegmentPayload = 1392;  // the largest multiple of 16 below that
inline constexpr std::size_t kSegmentHeaderSize = 4;

// One segment of a message: its place in the payload and the bytes there.
struct Segment {
  std::uint32_t offset = 0;  // in bytes, a multiple of 16
  bool more = false;         // another segment follows
  ByteView bytes;
};

// Takes apart what follows the message header. Nothing if there is no byte behind the segment header, or if a segment
// that is not the last has a length that is no multiple of 16.
std::optional<Segment> DecodeSegment(ByteView bytes);

// What goes to the kernel with one call: a message that fits into one datagram, or consecutive segments of one that
// does not. All but the last are of the same size. Refers to the payload's bytes, which it does not copy.
class Datagrams {
 public:
  static constexpr std::size_t kMax = 16;

  // `offset` is where in the payload the first segment is to begin, a multiple of kSegmentPayload. At most `limit`
  // segments, which is at least 1.
  Datagrams(const MessageHeader& header, ByteView payload, std::size_t offset, std::size_t limit = kMax);
  Datagrams(const Datagrams&) = delete;
  Datagrams& operator=(const Datagrams&) = delete;

  std::size_t Count() const { return count_; }
  // How much of the payload is in the first `count` of them.
  std::size_t PayloadSize(std::size_t count) const;
  std::size_t Size() const { return parts_[0].iov_len + parts_[1].iov_len; }  // of all but the last
  // The parts of the datagrams one after the other, two of each: what comes before the payload's bytes, and these.
  iovec* Parts(std::size_t datagram = 0) { return &parts_[2 * datagram]; }
  static constexpr std::size_t kPartsEach = 2;

 private:
  std::size_t count_ = 0;
  std::array<std::array<std::uint8_t, kHeaderSize + kSegmentHeaderSize>, kMax> headers_;
  std::array<iovec, kPartsEach * kMax> parts_;
};

// How many datagrams a message of this size is.
inline std::size_t DatagramCount(std::size_t payload_size) {
  return payload_size <= kMaxUnsegmentedPayload ? 1 : (payload_size + kSegmentPayload - 1) / kSegmentPayload;
}

}  // namespace vsomeip_v3::embedded
