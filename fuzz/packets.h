#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

/// One of the packets that an input is made of. Its bytes are those of the input.
struct Packet {
  std::uint8_t control;  ///< where it goes or when: the harness says what the bits mean
  const std::uint8_t* data;
  std::size_t size;
};

/// An input is a row of packets: the control byte, two bytes of length, the packet's bytes. Any bytes are an input: the
/// last packet may be cut off. At most `limit` packets are read.
inline std::vector<Packet> SplitPackets(const std::uint8_t* data, std::size_t size, std::size_t limit) {
  constexpr std::size_t kFrame = 3;
  std::vector<Packet> packets;
  while (size >= kFrame && packets.size() < limit) {
    const std::size_t claimed = data[1] * std::size_t{256} + data[2];
    const std::size_t length = claimed < size - kFrame ? claimed : size - kFrame;
    packets.push_back({data[0], data + kFrame, length});
    data += kFrame + length;
    size -= kFrame + length;
  }
  return packets;
}

}  // namespace fuzz
