#include "embedded_stack/discovery/peer_table.h"

#include <algorithm>

namespace vsomeip_v3::embedded {

// At the limit the peer that was silent for the longest time makes room.
PeerTable::Peer& PeerTable::Find(std::uint32_t address, TimePoint now) {
  if (peers_.size() >= kMaxPeers && peers_.find(address) == peers_.end()) {
    peers_.erase(std::min_element(peers_.begin(), peers_.end(),
                                  [](const auto& a, const auto& b) { return a.second.used < b.second.used; }));
  }
  Peer& peer = peers_[address];
  peer.used = now;
  return peer;
}

bool PeerTable::Heard(std::uint32_t address, bool multicast, Session session, TimePoint now) {
  Peer& peer = Find(address, now);
  std::optional<Session>& last = multicast ? peer.multicast : peer.unicast;
  const bool restarted = last && session.reboot && (!last->reboot || session.id <= last->id);
  if (restarted) peer = Peer{std::nullopt, std::nullopt, peer.sent, now};  // both channels begin anew
  (multicast ? peer.multicast : peer.unicast) = session;
  return restarted;
}

PeerTable::Session PeerTable::Next(std::optional<std::uint32_t> peer, TimePoint now) {
  Session& session = peer ? Find(*peer, now).sent : sent_to_group_;
  if (++session.id == 0) session = {1, false};
  return session;
}

}  // namespace vsomeip_v3::embedded
