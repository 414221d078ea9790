#include "embedded_stack/discovery/peer_table.h"

#include <tuple>

namespace vsomeip_v3::embedded {

// Forgets one that is not in use, each in its turn. If all are, the table grows: there are limits for what they use.
void PeerTable::MakeRoom() {
  constexpr std::size_t kTries = 64;  // the next message makes up for what is left
  for (std::size_t i = 0; i < kTries; ++i) {
    auto next = peers_.upper_bound(last_forgotten_);
    if (next == peers_.end()) next = peers_.begin();
    last_forgotten_ = next->first;
    if (is_in_use_(next->first)) continue;
    const auto age = [](const Session& session) { return std::make_tuple(!session.reboot, session.id); };
    if (age(next->second.sent) > age(sent_to_forgotten_)) sent_to_forgotten_ = next->second.sent;
    peers_.erase(next);
    return;
  }
}

PeerTable::Peer& PeerTable::Find(std::uint32_t address) {
  const auto found = peers_.find(address);
  if (found != peers_.end()) return found->second;
  if (peers_.size() >= kMaxPeers) MakeRoom();
  Peer& peer = peers_[address];
  peer.sent = sent_to_forgotten_;
  return peer;
}

bool PeerTable::Heard(std::uint32_t address, bool multicast, Session session) {
  Peer& peer = Find(address);
  std::optional<Session>& last = multicast ? peer.multicast : peer.unicast;
  const bool restarted = last && session.reboot && (!last->reboot || session.id <= last->id);
  if (restarted) peer = Peer{std::nullopt, std::nullopt, peer.sent};  // both channels begin anew
  (multicast ? peer.multicast : peer.unicast) = session;
  return restarted;
}

PeerTable::Session PeerTable::Next(std::optional<std::uint32_t> peer) {
  Session& session = peer ? Find(*peer).sent : sent_to_group_;
  if (++session.id == 0) session = {1, false};
  return session;
}

}  // namespace vsomeip_v3::embedded
