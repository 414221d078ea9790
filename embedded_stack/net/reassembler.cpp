#include "embedded_stack/net/reassembler.h"

#include <algorithm>

namespace vsomeip_v3::embedded {

Reassembler::Result Reassembler::Add(const Endpoint& from, const MessageHeader& header, const Segment& segment,
                                     TimePoint now) {
  const Key key{from,           header.service,           header.method, header.client,
                header.session, header.interface_version, header.type};
  const std::size_t size = segment.bytes.size();
  const bool is_too_long = segment.offset > kMaxPayload || size > kMaxPayload - segment.offset;
  Message* message = is_too_long ? nullptr : Continue(key, size);
  if (message == nullptr) {
    if (is_too_long || !MakeRoom(from, size, key)) {
      if (const auto found = messages_.find(key); found != messages_.end()) Erase(found);
      return {Outcome::kOverLimit, {}};
    }
    const auto [position, is_new] = messages_.try_emplace(key);
    latest_ = &*position;
    message = &position->second;
    if (is_new) {
      message->started = now;
      message->peer_bytes = &bytes_per_peer_[from.address];
    }
  }
  message->last = now;
  message->charged += size;
  bytes_ += size;
  *message->peer_bytes += size;

  if (!Accept(*message, segment)) {
    Erase(messages_.find(key));
    return {Outcome::kBadSegment, {}};
  }
  if (!message->size || message->length < *message->size) return {};
  Result result{Outcome::kComplete, message->Join()};
  Erase(messages_.find(key));
  return result;
}

// The message that had the latest segment, if this one belongs to it and there is room.
Reassembler::Message* Reassembler::Continue(const Key& key, std::size_t size) {
  if (latest_ == nullptr || latest_->first != key) return nullptr;
  const bool fits = *latest_->second.peer_bytes + size <= kMaxBytesPerPeer && bytes_ + size <= kMaxBytes;
  return fits ? &latest_->second : nullptr;
}

void Reassembler::Message::Append(ByteView bytes) {
  if (parts.empty() || parts.back().size() + bytes.size() > kPart) {
    parts.emplace_back();
    if (parts.size() > 1) parts.back().reserve(kPart);
  }
  parts.back().insert(parts.back().end(), bytes.begin(), bytes.end());
  length += bytes.size();
}

std::vector<std::uint8_t> Reassembler::Message::Join() {
  if (parts.size() == 1) return std::move(parts.front());
  std::vector<std::uint8_t> whole;
  whole.reserve(length);
  for (const auto& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

// True if the segment fits what is there. What a duplicate brings stays charged, so that a flood of them ends at a
// limit.
bool Reassembler::Accept(Message& message, const Segment& segment) {
  const auto end = static_cast<std::uint32_t>(segment.offset + segment.bytes.size());
  if (!segment.more) {
    const bool beyond = message.length > end || (!message.early.empty() && message.early.rbegin()->first >= end);
    if (beyond || (message.size && *message.size != end)) return false;
    message.size = end;
  }
  if (message.size && end > *message.size) return false;
  if (segment.offset > message.length) {
    if (message.early.size() >= kMaxEarlySegments) return false;
    message.early.emplace(segment.offset, std::vector<std::uint8_t>(segment.bytes.begin(), segment.bytes.end()));
    return true;
  }
  if (segment.offset < message.length) return end <= message.length;  // a duplicate, or an overlap

  message.Append(segment.bytes);
  while (!message.early.empty() && message.early.begin()->first <= message.length) {
    const auto next = message.early.begin();
    if (next->first < message.length) return false;
    message.Append(next->second);
    message.early.erase(next);
  }
  return !message.size || message.length <= *message.size;
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
  if (latest_ == &*message) latest_ = nullptr;
  bytes_ -= message->second.charged;
  *message->second.peer_bytes -= message->second.charged;
  if (*message->second.peer_bytes == 0) bytes_per_peer_.erase(std::get<0>(message->first).address);
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
