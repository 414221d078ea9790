#include "embedded_stack/wire/discovery_message.h"

#include <algorithm>

namespace vsomeip_v3::embedded {

namespace {

constexpr std::uint8_t kRebootFlag = 0x80;
constexpr std::uint8_t kUnicastFlag = 0x40;
constexpr std::size_t kEntrySize = 16;
constexpr std::uint8_t kIpv4EndpointOption = 0x04;
constexpr std::uint16_t kIpv4OptionLength = 9;
constexpr std::uint8_t kUdp = 0x11;

// An option as far as this stack cares: the endpoint of those that name an IPv4 UDP endpoint.
struct Option {
  bool malformed = false;
  std::optional<Endpoint> udp;
};

std::vector<Option> DecodeOptions(ByteView bytes) {
  std::vector<Option> options;
  ByteReader reader(bytes);
  while (reader.Remaining() > 0) {
    const std::uint16_t length = reader.U16();
    const std::uint8_t type = reader.U8();
    ByteReader content(reader.Take(length));
    Option option;
    if (reader.Failed()) {
      option.malformed = true;  // and the last one: its length cannot be trusted
    } else if (type == kIpv4EndpointOption) {
      content.U8();  // reserved
      Endpoint endpoint;
      endpoint.address = content.U32();
      content.U8();  // reserved
      const std::uint8_t protocol = content.U8();
      endpoint.port = content.U16();
      option.malformed = content.Failed() || length != kIpv4OptionLength;
      if (!option.malformed && protocol == kUdp) option.udp = endpoint;
    }
    options.push_back(option);
  }
  return options;
}

void ResolveRun(std::size_t first, std::size_t count, const std::vector<Option>& options, DiscoveryEntry& entry) {
  if (count == 0) return;
  if (first > options.size() || count > options.size() - first) {
    entry.bad_options = true;
    return;
  }
  for (std::size_t i = first; i < first + count; ++i) {
    if (options[i].malformed) entry.bad_options = true;
    if (!entry.udp) entry.udp = options[i].udp;
  }
}

std::optional<DiscoveryEntry> DecodeEntry(ByteView bytes, const std::vector<Option>& options) {
  ByteReader reader(bytes);
  DiscoveryEntry entry;
  entry.type = static_cast<EntryType>(reader.U8());
  const std::uint8_t first_run = reader.U8();
  const std::uint8_t second_run = reader.U8();
  const std::uint8_t counts = reader.U8();
  entry.service = reader.U16();
  entry.instance = reader.U16();
  entry.major = reader.U8();
  entry.ttl = reader.U24();
  switch (entry.type) {
    case EntryType::kFind:
    case EntryType::kOffer:
      entry.minor = reader.U32();
      break;
    case EntryType::kSubscribe:
    case EntryType::kAcknowledge:
      reader.U8();  // reserved
      entry.counter = reader.U8() & 0x0F;
      entry.eventgroup = reader.U16();
      break;
    default:
      return std::nullopt;
  }
  ResolveRun(first_run, counts >> 4U, options, entry);
  ResolveRun(second_run, counts & 0x0FU, options, entry);
  return entry;
}

void EncodeEntry(const DiscoveryEntry& entry, std::size_t option_index, ByteWriter& writer) {
  writer.U8(static_cast<std::uint8_t>(entry.type));
  writer.U8(static_cast<std::uint32_t>(option_index));
  writer.U8(0);
  writer.U8(entry.udp ? 0x10 : 0x00);
  writer.U16(entry.service);
  writer.U16(entry.instance);
  writer.U8(entry.major);
  writer.U24(entry.ttl);
  if (entry.IsEventgroupEntry()) {
    writer.U8(0);
    writer.U8(entry.counter);
    writer.U16(entry.eventgroup);
  } else {
    writer.U32(entry.minor);
  }
}

void EncodeOption(const Endpoint& endpoint, ByteWriter& writer) {
  writer.U16(kIpv4OptionLength);
  writer.U8(kIpv4EndpointOption);
  writer.U8(0);
  writer.U32(endpoint.address);
  writer.U8(0);
  writer.U8(kUdp);
  writer.U16(endpoint.port);
}

}  // namespace

std::optional<DiscoveryMessage> DecodeDiscovery(ByteView datagram) {
  const auto header = DecodeHeader(datagram);
  if (!header || header->service != kDiscoveryService || header->method != kDiscoveryMethod ||
      header->type != static_cast<std::uint8_t>(message_type_e::MT_NOTIFICATION) ||
      header->protocol_version != kProtocolVersion || header->interface_version != 1 || header->return_code != 0 ||
      header->session == 0 || header->length != datagram.size() - kLengthBase) {
    return std::nullopt;
  }
  ByteReader reader(datagram.Sub(kHeaderSize));
  DiscoveryMessage message;
  message.session = header->session;
  message.reboot = (reader.U8() & kRebootFlag) != 0;
  reader.U24();  // reserved
  const ByteView entries = reader.Take(reader.U32());
  const ByteView options = reader.Take(reader.U32());
  if (reader.Failed() || entries.size() % kEntrySize != 0 || entries.size() > kMaxReceivedEntries * kEntrySize) {
    return std::nullopt;
  }

  const std::vector<Option> decoded_options = DecodeOptions(options);
  for (std::size_t at = 0; at < entries.size(); at += kEntrySize) {
    if (auto entry = DecodeEntry(entries.Sub(at, kEntrySize), decoded_options)) message.entries.push_back(*entry);
  }
  return message;
}

std::vector<std::uint8_t> EncodeDiscovery(const DiscoveryMessage& message) {
  std::vector<Endpoint> options;
  std::vector<std::uint8_t> entries;
  ByteWriter entry_writer(entries);
  for (const DiscoveryEntry& entry : message.entries) {
    std::size_t index = 0;
    if (entry.udp) {
      const auto found = std::find(options.begin(), options.end(), *entry.udp);
      index = static_cast<std::size_t>(found - options.begin());
      if (found == options.end()) options.push_back(*entry.udp);
    }
    EncodeEntry(entry, index, entry_writer);
  }
  std::vector<std::uint8_t> option_bytes;
  ByteWriter option_writer(option_bytes);
  for (const Endpoint& endpoint : options) EncodeOption(endpoint, option_writer);

  MessageHeader header;
  header.service = kDiscoveryService;
  header.method = kDiscoveryMethod;
  header.session = message.session;
  header.interface_version = 1;
  header.type = static_cast<std::uint8_t>(message_type_e::MT_NOTIFICATION);
  const auto header_bytes = EncodeHeader(header, 12 + entries.size() + option_bytes.size());
  std::vector<std::uint8_t> out(header_bytes.begin(), header_bytes.end());
  ByteWriter writer(out);
  writer.U8((message.reboot ? kRebootFlag : 0) | kUnicastFlag);
  writer.U24(0);
  writer.U32(static_cast<std::uint32_t>(entries.size()));
  writer.Bytes(entries);
  writer.U32(static_cast<std::uint32_t>(option_bytes.size()));
  writer.Bytes(option_bytes);
  return out;
}

}  // namespace vsomeip_v3::embedded
