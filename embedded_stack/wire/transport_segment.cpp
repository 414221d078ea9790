#include "embedded_stack/wire/transport_segment.h"

#include <algorithm>

namespace vsomeip_v3::embedded {

namespace {
constexpr std::uint32_t kMoreFlag = 0x01;
constexpr std::uint32_t kOffsetMask = 0xFFFFFFF0;  // the field counts 16-byte units in its upper 28 bits
}  // namespace

std::optional<Segment> DecodeSegment(ByteView bytes) {
  ByteReader reader(bytes);
  const std::uint32_t field = reader.U32();
  if (reader.Failed() || reader.Remaining() == 0) return std::nullopt;
  Segment segment{field & kOffsetMask, (field & kMoreFlag) != 0, reader.Take(reader.Remaining())};
  if (segment.more && segment.bytes.size() % 16 != 0) return std::nullopt;
  return segment;
}

std::vector<std::uint8_t> EncodeSegment(const MessageHeader& header, ByteView payload, std::size_t offset) {
  const ByteView part = payload.Sub(offset, kSegmentPayload);
  const bool more = payload.size() - offset > part.size();
  MessageHeader segment_header = header;
  segment_header.type = static_cast<std::uint8_t>(header.type | kSegmentFlag);

  std::vector<std::uint8_t> datagram;
  datagram.reserve(kHeaderSize + kSegmentHeaderSize + part.size());
  EncodeHeader(segment_header, kSegmentHeaderSize + part.size(), datagram);
  ByteWriter writer(datagram);
  writer.U32(static_cast<std::uint32_t>(offset) | (more ? kMoreFlag : 0));
  writer.Bytes(part);
  return datagram;
}

}  // namespace vsomeip_v3::embedded
