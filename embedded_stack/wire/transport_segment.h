#pragma once

#include <cstdint>
#include <optional>
#include <vector>

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

// The whole datagram of the segment at `offset` of `payload`. `offset` is a multiple of kSegmentPayload below its size.
std::vector<std::uint8_t> EncodeSegment(const MessageHeader& header, ByteView payload, std::size_t offset);

}  // namespace vsomeip_v3::embedded
