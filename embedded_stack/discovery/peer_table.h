#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "embedded_stack/discovery/output.h"

namespace vsomeip_v3::embedded {

// Session ids and reboot flags, ours and those of the peers. Not synchronized.
class PeerTable {
 public:
  static constexpr std::size_t kMaxPeers = 1024;

  struct Session {
    session_t id;
    bool reboot;
  };

  // Notes a message from `peer`. True if it shows that the peer has restarted since its last one.
  bool Heard(std::uint32_t peer, bool multicast, Session session, TimePoint now);

  // The session of our next message to the group or to one peer. Starts at 1 and skips 0 when it wraps; the reboot
  // flag is set until then.
  Session Next(std::optional<std::uint32_t> peer, TimePoint now);

  std::size_t Size() const { return peers_.size(); }

 private:
  struct Peer {
    std::optional<Session> multicast;
    std::optional<Session> unicast;
    Session sent{0, true};
    TimePoint used;
  };
  Peer& Find(std::uint32_t address, TimePoint now);

  std::map<std::uint32_t, Peer> peers_;
  Session sent_to_group_{0, true};
};

}  // namespace vsomeip_v3::embedded
