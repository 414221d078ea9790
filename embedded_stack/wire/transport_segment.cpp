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

Datagrams::Datagrams(const MessageHeader& header, ByteView payload, std::size_t offset, std::size_t limit) {
  const bool in_segments = payload.size() > kMaxUnsegmentedPayload;
  MessageHeader segment_header = header;
  if (in_segments) segment_header.type = static_cast<std::uint8_t>(header.type | kSegmentFlag);
  do {
    const ByteView part = payload.Sub(offset, in_segments ? kSegmentPayload : kMaxUnsegmentedPayload);
    const std::size_t extra = in_segments ? kSegmentHeaderSize : 0;
    auto& bytes = headers_[count_];
    const auto encoded = EncodeHeader(segment_header, extra + part.size());
    std::copy(encoded.begin(), encoded.end(), bytes.begin());
    const bool more = payload.size() - offset > part.size();
    const auto field = static_cast<std::uint32_t>(offset) | (more ? kMoreFlag : 0);
    for (std::size_t i = 0; i < kSegmentHeaderSize; ++i) {
      bytes[kHeaderSize + i] = static_cast<std::uint8_t>(field >> (24U - 8U * i));
    }
    Parts(count_)[0] = {bytes.data(), kHeaderSize + extra};
    Parts(count_)[1] = {const_cast<std::uint8_t*>(part.data()), part.size()};  // NOLINT: the kernel only reads it
    ++count_;
    offset += part.size();
  } while (offset < payload.size() && count_ < std::min(limit, kMax));
}

std::size_t Datagrams::PayloadSize(std::size_t count) const {
  std::size_t size = 0;
  for (std::size_t i = 0; i < count; ++i) size += parts_[kPartsEach * i + 1].iov_len;
  return size;
}

}  // namespace vsomeip_v3::embedded
