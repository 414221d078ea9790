// Datagrams of messages and of segments, from four peers over some seconds: read, written again, and put together. A
// segment's bytes are replaced by ones that depend on their place alone, so that a message that was put together
// wrongly shows.
#include <algorithm>
#include <chrono>
#include <vector>

#include "embedded_stack/net/reassembler.h"
#include "embedded_stack/wire/message_header.h"
#include "embedded_stack/wire/transport_segment.h"
#include "fuzz/check.h"
#include "fuzz/packets.h"

namespace {

using namespace vsomeip_v3::embedded;
using Bytes = std::vector<std::uint8_t>;

std::uint8_t ByteAt(std::size_t place) { return static_cast<std::uint8_t>(place ^ (place >> 8U)); }

// Cuts the payload as a sender does, and puts it together again.
void SendAndReceive(const MessageHeader& header, const Bytes& payload) {
  Reassembler receiver;
  Reassembler::Result result;
  for (std::size_t offset = 0; offset < payload.size(); offset += kSegmentPayload) {
    Datagrams one(header, payload, offset, 1);
    Bytes datagram;
    for (const iovec* part = one.Parts(); part != one.Parts() + Datagrams::kPartsEach; ++part) {
      const auto* const bytes = static_cast<const std::uint8_t*>(part->iov_base);
      datagram.insert(datagram.end(), bytes, bytes + part->iov_len);
    }
    if (payload.size() <= kMaxUnsegmentedPayload) {
      fuzz::Require(std::equal(payload.begin(), payload.end(), datagram.begin() + kHeaderSize), "a message is whole");
      return;
    }
    const auto sent = DecodeHeader(datagram);
    const auto segment = DecodeSegment(ByteView(datagram).Sub(kHeaderSize));
    fuzz::Require(sent && sent->IsSegment() && segment, "a segment that was written can be read");
    result = receiver.Add({}, *sent, *segment, {});
  }
  fuzz::Require(result.outcome == Reassembler::Outcome::kComplete && result.payload == payload,
                "a message comes back from its segments");
}

// Bits 0 and 1 of the control byte are the peer, the others how many tenths of a second have passed.
void Receive(const fuzz::Packet& packet, Reassembler& reassembler, Reassembler::TimePoint& now) {
  now += std::chrono::milliseconds(100) * (packet.control >> 2U);
  reassembler.Expire(now);
  const ByteView datagram(packet.data, packet.size);
  const auto header = DecodeHeader(datagram);
  if (!header) return;
  const auto written = EncodeHeader(*header, header->length - kLengthBase);
  fuzz::Require(std::equal(written.begin(), written.end(), packet.data), "a header is written as it was read");
  if (!header->IsSegment()) return;
  auto segment = DecodeSegment(datagram.Sub(kHeaderSize));
  if (!segment) return;

  Bytes bytes(segment->bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = ByteAt(segment->offset + i);
  segment->bytes = bytes;
  const Endpoint peer{0x7F000001U + (packet.control & 0x3U), 30509};
  const auto result = reassembler.Add(peer, *header, *segment, now);
  fuzz::Require(reassembler.Bytes() <= Reassembler::kMaxBytes, "what waits is limited");
  if (result.outcome != Reassembler::Outcome::kComplete) return;
  for (std::size_t i = 0; i < result.payload.size(); ++i) {
    fuzz::Require(result.payload[i] == ByteAt(i), "each byte is where it belongs");
  }
  SendAndReceive(*header, result.payload);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMaxPackets = 64;
  Reassembler reassembler;
  Reassembler::TimePoint now{std::chrono::hours(1)};
  for (const fuzz::Packet& packet : fuzz::SplitPackets(data, size, kMaxPackets)) Receive(packet, reassembler, now);
  reassembler.Expire(now + Reassembler::kIdleLimit);
  fuzz::Require(reassembler.Empty() && reassembler.Bytes() == 0, "nothing stays");
  return 0;
}
