#include "embedded_stack/net/send_queue.h"

#include <algorithm>
#include <iterator>

namespace vsomeip_v3::embedded {

namespace {

constexpr double kMinBytesPerMillisecond = 4096;
// 180 MB/s of payload: a receiver has to put it together as fast, whatever else runs.
#ifdef TARN7_SLOW_RECEIVERS
constexpr double kMaxBytesPerMillisecond = 17500;
#else
constexpr double kMaxBytesPerMillisecond = 300000;
#endif

// What the receiver's kernel charges for a payload.
constexpr double Cost(std::size_t datagrams, std::size_t payload_size) {
  return static_cast<double>(datagrams * SendQueue::kDatagramOverhead + payload_size);
}
constexpr double kCostOfSegment = Cost(1, kSegmentPayload);
constexpr double kPiece = 23 * kCostOfSegment;  // what is sent of a message that waits, at least

}  // namespace

// Together no more than the buffer: what goes out at once, and what follows in kStall. A quarter at once leaves room
// for what others send meanwhile.
SendQueue::Class::Class(std::size_t receive_buffer) {
  const auto buffer = static_cast<double>(receive_buffer);
  const auto stall = static_cast<double>(kStall.count());
  burst = std::max(Cost(DatagramCount(kAtOnce), kAtOnce), buffer / 4);
  per_nanosecond = std::clamp((buffer - burst) / stall, kMinBytesPerMillisecond, kMaxBytesPerMillisecond) / 1e6;
}

SendQueue::SendQueue(std::size_t receive_buffer) : own_(receive_buffer) {}

SendQueue::Class& SendQueue::ClassOf(const Target& target) { return target.second.IsOfThisStack() ? own_ : others_; }

void SendQueue::Renew(const Class& receivers, Allowance& allowance, TimePoint now) {
  if (now <= allowance.since) return;
  const auto passed = static_cast<double>(std::chrono::nanoseconds(now - allowance.since).count());
  allowance.used = std::max(0.0, allowance.used - passed * receivers.per_nanosecond);
  allowance.since = now;
}

SendQueue::Allowance& SendQueue::AllowanceOf(Class& receivers, const Target& target, TimePoint now) {
  auto& all = receivers.allowances;
  auto found = all.find(target.second.address);
  if (found == all.end()) {
    if (all.size() >= receivers.most) {
      for (auto each = all.begin(); each != all.end();) {
        Renew(receivers, each->second, now);
        each = each->second.used > 0 ? std::next(each) : all.erase(each);
      }
      receivers.most = std::max(std::size_t{64}, 2 * all.size());
    }
    found = all.emplace(target.second.address, Allowance{0, now}).first;
  }
  Renew(receivers, found->second, now);
  return found->second;
}

bool SendQueue::Admit(const Target& target, std::size_t payload_size, TimePoint now) {
  if (jobs_.find(target) != jobs_.end()) return false;
  const std::size_t datagrams = DatagramCount(payload_size);
  const double cost = Cost(datagrams, payload_size);
  Class& receivers = ClassOf(target);
  Allowance& allowance = AllowanceOf(receivers, target, now);
  if (datagrams > 1) {
    if (allowance.used + cost > receivers.burst) return false;
    allowance.used += cost;
  } else {
    // However many there are, they leave a piece for what waits.
    allowance.used = std::max(allowance.used, std::min(allowance.used + cost, receivers.burst - kPiece));
  }
  return true;
}

bool SendQueue::Push(const Target& target, const MessageHeader& header, SharedBytes payload, std::size_t sent) {
  const std::size_t size = payload->size() + kJobOverhead;
  const auto waiting = waiting_.find(target.second.address);
  const std::size_t before = waiting == waiting_.end() ? 0 : waiting->second;
  if (before + 2 * size > kMaxBytes - bytes_) return false;
  bytes_ += size;
  waiting_[target.second.address] = before + size;
  jobs_[target].push_back({header, std::move(payload), sent});
  return true;
}

void SendQueue::Release(std::uint32_t address, std::size_t size) {
  bytes_ -= size;
  const auto waiting = waiting_.find(address);
  waiting->second -= size;
  if (waiting->second == 0) waiting_.erase(waiting);
}

TimePoint SendQueue::Flush(TimePoint now, const Send& send) {
  TimePoint next = kNever;
  auto turn = jobs_.upper_bound(last_served_);
  for (std::size_t waiting = 0; waiting < jobs_.size();) {
    if (turn == jobs_.end()) turn = jobs_.begin();
    const Target target = turn->first;
    Job& job = turn->second.front();
    Class& receivers = ClassOf(target);
    Allowance& allowance = AllowanceOf(receivers, target, now);
    const double segments = (receivers.burst - allowance.used) / kCostOfSegment;
    if (segments < 1) {
      // Not before there is room for some, so that few large pieces go out instead of many small ones.
      const double missing = allowance.used + kPiece - receivers.burst;
      next =
          std::min(next, now + std::chrono::nanoseconds(static_cast<std::int64_t>(missing / receivers.per_nanosecond)));
      ++waiting;
      ++turn;
      continue;
    }
    Datagrams datagrams(job.header, *job.payload, job.sent, static_cast<std::size_t>(segments));
    const std::size_t taken = send(target, datagrams);
    allowance.used += static_cast<double>(taken) * kCostOfSegment;
    job.sent += datagrams.PayloadSize(taken);
    last_served_ = target;
    if (taken < datagrams.Count()) return now + kRetry;
    waiting = 0;
    if (job.sent < job.payload->size()) {
      ++turn;
      continue;
    }
    Release(target.second.address, job.payload->size() + kJobOverhead);
    turn->second.pop_front();
    turn = turn->second.empty() ? jobs_.erase(turn) : std::next(turn);
  }
  return next;
}

}  // namespace vsomeip_v3::embedded
