#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "embedded_stack/discovery/output.h"

namespace vsomeip_v3::embedded {

// Session ids and reboot flags, ours and those of the peers. Not synchronized.
class PeerTable {
 public:
  static constexpr std::size_t kMaxPeers = 1024;

  // Whether a peer provides something that is used here, or is subscribed here. Such a one is never forgotten, so that
  // nobody's messages, however many, can make it look restarted.
  using InUse = std::function<bool(std::uint32_t peer)>;

  explicit PeerTable(InUse is_in_use) : is_in_use_(std::move(is_in_use)) {}

  struct Session {
    session_t id;
    bool reboot;
  };

  // Notes a message from `peer`. True if it shows that the peer has restarted since its last one.
  bool Heard(std::uint32_t peer, bool multicast, Session session);

  // The session of our next message to the group or to one peer. Starts at 1 and skips 0 when it wraps; the reboot
  // flag is set until then.
  Session Next(std::optional<std::uint32_t> peer);

  std::size_t Size() const { return peers_.size(); }

 private:
  struct Peer {
    std::optional<Session> multicast;
    std::optional<Session> unicast;
    Session sent{0, true};
  };
  Peer& Find(std::uint32_t address);
  void MakeRoom();

  InUse is_in_use_;
  std::map<std::uint32_t, Peer> peers_;
  std::uint32_t last_forgotten_ = 0;
  Session sent_to_group_{0, true};
  Session sent_to_forgotten_{0, true};  // the latest: who comes back must not take us for restarted
};

}  // namespace vsomeip_v3::embedded
