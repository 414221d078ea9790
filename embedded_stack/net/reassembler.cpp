#include "embedded_stack/net/reassembler.h"

namespace vsomeip_v3::embedded {

Reassembler::Result Reassembler::Add(const Endpoint& from, const MessageHeader& header, const Segment& segment,
                                     TimePoint now) {
  const Key key{from,           header.service,           header.method, header.client,
                header.session, header.interface_version, header.type};
  const std::size_t size = segment.bytes.size();
  if (segment.offset > kMaxPayload || size > kMaxPayload - segment.offset || !MakeRoom(from, size, key)) {
    if (const auto found = messages_.find(key); found != messages_.end()) Erase(found);
    return {Outcome::kOverLimit, {}};
  }
  const auto [position, is_new] = messages_.try_emplace(key);
  Message& message = position->second;
  if (is_new) message.started = now;
  message.last = now;
  message.charged += size;
  bytes_ += size;
  bytes_per_peer_[from.address] += size;

  if (!Accept(message, segment)) {
    Erase(position);
    return {Outcome::kBadSegment, {}};
  }
  if (!message.size || message.bytes.size() < *message.size) return {};
  Result result{Outcome::kComplete, std::move(message.bytes)};
  Erase(position);
  return result;
}

// True if the segment fits what is there. What a duplicate brings stays charged, so that a flood of them ends at a
// limit.
bool Reassembler::Accept(Message& message, const Segment& segment) {
  const auto end = static_cast<std::uint32_t>(segment.offset + segment.bytes.size());
  if (!segment.more) {
    const bool beyond = message.bytes.size() > end || (!message.early.empty() && message.early.rbegin()->first >= end);
    if (beyond || (message.size && *message.size != end)) return false;
    message.size = end;
  }
  if (message.size && end > *message.size) return false;
  if (segment.offset > message.bytes.size()) {
    if (message.early.size() >= kMaxEarlySegments) return false;
    message.early.emplace(segment.offset, std::vector<std::uint8_t>(segment.bytes.begin(), segment.bytes.end()));
    return true;
  }
  if (segment.offset < message.bytes.size()) return end <= message.bytes.size();  // a duplicate, or an overlap

  message.bytes.insert(message.bytes.end(), segment.bytes.begin(), segment.bytes.end());
  while (!message.early.empty() && message.early.begin()->first <= message.bytes.size()) {
    const auto next = message.early.begin();
    if (next->first < message.bytes.size()) return false;
    message.bytes.insert(message.bytes.end(), next->second.begin(), next->second.end());
    message.early.erase(next);
  }
  return !message.size || message.bytes.size() <= *message.size;
}

// Gives up the peer's oldest message if that helps the new one in; never one of another peer.
bool Reassembler::MakeRoom(const Endpoint& from, std::size_t size, const Key& keep) {
  std::size_t count = 0;
  auto oldest = messages_.end();
  const Endpoint first_of_peer{from.address, 0};
  for (auto it = messages_.lower_bound(Key{first_of_peer, 0, 0, 0, 0, 0, 0});
       it != messages_.end() && std::get<0>(it->first).address == from.address; ++it) {
    ++count;
    if (it->first != keep && (oldest == messages_.end() || it->second.last < oldest->second.last)) oldest = it;
  }
  const bool is_known = messages_.find(keep) != messages_.end();
  if (is_known) --count;
  const auto fits = [&] {
    const auto peer = bytes_per_peer_.find(from.address);
    const std::size_t peer_bytes = peer == bytes_per_peer_.end() ? 0 : peer->second;
    return peer_bytes + size <= kMaxBytesPerPeer && bytes_ + size <= kMaxBytes &&
           (is_known || messages_.size() < kMaxMessages);
  };
  if (count < kMaxMessagesPerPeer && fits()) return true;
  if (oldest == messages_.end()) return false;
  Erase(oldest);
  return fits();
}

void Reassembler::Erase(Messages::iterator message) {
  const auto peer = bytes_per_peer_.find(std::get<0>(message->first).address);
  bytes_ -= message->second.charged;
  peer->second -= message->second.charged;
  if (peer->second == 0) bytes_per_peer_.erase(peer);
  messages_.erase(message);
}

std::size_t Reassembler::Expire(TimePoint now) {
  std::size_t expired = 0;
  for (auto it = messages_.begin(); it != messages_.end();) {
    const auto current = it++;
    if (now - current->second.last < kIdleLimit && now - current->second.started < kTotalLimit) continue;
    Erase(current);
    ++expired;
  }
  return expired;
}

}  // namespace vsomeip_v3::embedded
