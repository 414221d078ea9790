#include "embedded_stack/net/send_queue.h"

#include "embedded_stack/wire/transport_segment.h"

namespace vsomeip_v3::embedded {

bool SendQueue::Push(const Target& target, const MessageHeader& header, SharedBytes payload) {
  const std::size_t size = payload->size() + kHeaderSize;
  if (size > kMaxBytes - bytes_) return false;
  bytes_ += size;
  jobs_[target].push_back({header, std::move(payload), 0});
  return true;
}

std::vector<std::uint8_t> SendQueue::NextDatagram(const Job& job) {
  if (job.payload->size() <= kMaxUnsegmentedPayload) return EncodeMessage(job.header, *job.payload);
  return EncodeSegment(job.header, *job.payload, job.sent);
}

void SendQueue::Flush(const std::function<bool(const Target&, const std::vector<std::uint8_t>&)>& send) {
  for (std::size_t i = 0; i < kDatagramsPerInterval && !jobs_.empty(); ++i) {
    auto turn = jobs_.upper_bound(last_served_);
    if (turn == jobs_.end()) turn = jobs_.begin();
    last_served_ = turn->first;
    std::deque<Job>& queue = turn->second;
    Job& job = queue.front();
    if (!send(turn->first, NextDatagram(job))) return;

    const bool in_segments = job.payload->size() > kMaxUnsegmentedPayload;
    job.sent += in_segments ? kSegmentPayload : job.payload->size();
    if (job.sent < job.payload->size()) continue;
    bytes_ -= job.payload->size() + kHeaderSize;
    queue.pop_front();
    if (queue.empty()) jobs_.erase(turn);
  }
}

std::vector<std::uint8_t> EncodeMessage(const MessageHeader& header, const std::vector<std::uint8_t>& payload) {
  std::vector<std::uint8_t> datagram;
  datagram.reserve(kHeaderSize + payload.size());
  EncodeHeader(header, payload.size(), datagram);
  datagram.insert(datagram.end(), payload.begin(), payload.end());
  return datagram;
}

}  // namespace vsomeip_v3::embedded
