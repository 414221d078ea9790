// What must not be read. That what is read and written is right, wire_check.py says from outside.
#include <gtest/gtest.h>

#include "embedded_stack/wire/discovery_message.h"
#include "embedded_stack/wire/message_header.h"
#include "embedded_stack/wire/transport_segment.h"

namespace vsomeip_v3::embedded {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kOffer{0xFF, 0xFF, 0x81, 0x00, 0x00, 0x00, 0x00, 0x30, 0x00, 0x00, 0x00, 0x05,
                   0x01, 0x01, 0x02, 0x00, 0xC0, 0x00, 0x00, 0x00,  // flags: reboot, unicast
                   0x00, 0x00, 0x00, 0x10,                          // length of the entries
                   0x01, 0x00, 0x00, 0x10, 0x47, 0x11, 0x00, 0x02,  // offer, one option, service, instance
                   0x03, 0x00, 0x00, 0x1E, 0x00, 0x00, 0x00, 0x07,  // major, time to live, minor
                   0x00, 0x00, 0x00, 0x0C,                          // length of the options
                   0x00, 0x09, 0x04, 0x00, 0x7F, 0x4D, 0x01, 0x02, 0x00, 0x11, 0x77, 0x2D};

TEST(DiscoveryMessageTest, IsWrittenAsItIsReadButEqualOptionsOnce) {
  DiscoveryMessage message;
  message.session = 1;
  message.reboot = false;
  for (const port_t port : {port_t{1}, port_t{2}, port_t{1}}) {
    DiscoveryEntry entry;
    entry.udp = Endpoint{0x7F000001, port};
    message.entries.push_back(entry);
  }
  const Bytes bytes = EncodeDiscovery(message);
  EXPECT_EQ(bytes.size(), 16U + 4 + 4 + 3 * 16 + 4 + 2 * 12);
  EXPECT_EQ(DecodeDiscovery(bytes)->entries[2].udp, (Endpoint{0x7F000001, 1}));
  EXPECT_FALSE(DecodeDiscovery(bytes)->reboot);
  EXPECT_EQ(EncodeDiscovery(*DecodeDiscovery(kOffer)), kOffer);
}

TEST(PrefixTest, NothingThatIsCutOffIsRead) {
  for (std::size_t size = 0; size < 16; ++size) EXPECT_FALSE(DecodeHeader({kOffer.data(), size})) << size;
  const Bytes segment{0x00, 0x00, 0x05, 0x70, 0xAA};
  for (std::size_t size = 0; size < 5; ++size) EXPECT_FALSE(DecodeSegment({segment.data(), size})) << size;
  EXPECT_FALSE(DecodeSegment(Bytes{0, 0, 0, 1, 0xAA}));  // more follow, but not on a multiple of 16
  for (std::size_t size = 0; size < kOffer.size(); ++size) EXPECT_FALSE(DecodeDiscovery({kOffer.data(), size})) << size;
  // Even if the length field of the header goes along.
  for (std::size_t size = 16; size < kOffer.size(); ++size) {
    Bytes prefix(kOffer.begin(), kOffer.begin() + static_cast<std::ptrdiff_t>(size));
    prefix[7] = static_cast<std::uint8_t>(size - 8);
    EXPECT_FALSE(DecodeDiscovery(prefix)) << size;
  }
}

TEST(DiscoveryMessageTest, HostileBytes) {
  enum Expectation { kRefused, kNoEntry, kBadOptions, kNoEndpoint };
  struct Case {
    const char* what;
    std::size_t at;
    std::uint8_t byte;
    Expectation expected;
  };
  const Case cases[] = {
      {"service", 1, 0xFE, kRefused},
      {"method", 3, 0x01, kRefused},
      {"length too small", 7, 0x2F, kRefused},
      {"session 0", 11, 0x00, kRefused},
      {"protocol version", 12, 0x02, kRefused},
      {"message type", 14, 0x00, kRefused},
      {"return code", 15, 0x01, kRefused},
      {"entries beyond the message", 20, 0xFF, kRefused},
      {"entries that are no multiple of 16", 23, 0x0F, kRefused},
      {"options beyond the message", 40, 0xFF, kRefused},
      {"options one byte beyond", 43, 0x0D, kRefused},
      {"unknown entry", 24, 0x55, kNoEntry},
      {"first run starts behind the last option", 25, 0x02, kBadOptions},
      {"first run starts far behind", 25, 0xFF, kBadOptions},
      {"first run too long", 27, 0x20, kBadOptions},
      {"second run too long", 27, 0x12, kBadOptions},
      {"option longer than the array", 45, 0x0A, kBadOptions},
      {"option much longer", 44, 0xFF, kBadOptions},
      {"option too short for its type", 45, 0x08, kBadOptions},
      {"unknown option", 46, 0x77, kNoEndpoint},
      {"TCP only", 53, 0x06, kNoEndpoint},
      {"no option", 27, 0x00, kNoEndpoint},
  };
  for (const Case& test : cases) {
    Bytes bytes = kOffer;
    bytes[test.at] = test.byte;
    const auto message = DecodeDiscovery(bytes);
    ASSERT_EQ(message.has_value(), test.expected != kRefused) << test.what;
    if (!message) continue;
    ASSERT_EQ(message->entries.size(), test.expected == kNoEntry ? 0U : 1U) << test.what;
    if (test.expected == kNoEntry) continue;
    EXPECT_EQ(message->entries[0].bad_options, test.expected == kBadOptions) << test.what;
    EXPECT_FALSE(test.expected == kNoEndpoint && message->entries[0].udp) << test.what;
  }
}

}  // namespace
}  // namespace vsomeip_v3::embedded
