#include <array>
#include <chrono>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <random>
#include <sys/socket.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/multicast.hpp>

#include "tools/tarn7/doctor/checks.h"
#include "tools/tarn7/doctor/udp_socket.h"

namespace tarn7::tool {

namespace {

constexpr const char* kCheck = "multicast";
constexpr const char* kLoopback = "127.0.0.1";
constexpr std::chrono::seconds kTimeout{1};

using Udp = boost::asio::ip::udp;
using Datagram = std::array<unsigned char, 16>;

/// A SOME/IP header with an identifier that no node serves, so that whoever else hears it drops it. The request id is a
/// number of our own.
Datagram MakeDatagram() {
  std::random_device random;
  Datagram datagram = {0xFF, 0xFF, 0x80, 0x00, 0, 0, 0, 8, 0, 0, 0, 0, 1, 1, 2, 0};
  for (std::size_t i = 8; i < 12; ++i) {
    datagram[i] = static_cast<unsigned char>(random());
  }
  return datagram;
}

template <typename Value>
void SetOption(Udp::socket& socket, int option, const Value& value) {
  if (::setsockopt(socket.native_handle(), IPPROTO_IP, option, &value, sizeof(value)) != 0) {
    throw boost::system::system_error(errno, boost::system::system_category());
  }
}

bool Receives(Udp::socket& socket, const Datagram& expected) {
  const auto deadline = std::chrono::steady_clock::now() + kTimeout;
  for (auto now = std::chrono::steady_clock::now(); now < deadline; now = std::chrono::steady_clock::now()) {
    pollfd readable{socket.native_handle(), POLLIN, 0};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now);
    if (::poll(&readable, 1, static_cast<int>(left.count()) + 1) > 0) {
      Datagram received{};
      Udp::endpoint from;
      boost::system::error_code longer;
      if (socket.receive_from(boost::asio::buffer(received), from, 0, longer) == expected.size() &&
          received == expected) {
        return true;
      }
    }
  }
  return false;
}

bool ComesBack(const StackConfiguration& configuration, const std::string& unicast) {
  const auto group = boost::asio::ip::make_address_v4(configuration.group);
  const auto address = boost::asio::ip::make_address_v4(unicast);
  ip_mreqn membership{};
  membership.imr_multiaddr.s_addr = htonl(group.to_uint());
  membership.imr_address.s_addr = htonl(address.to_uint());
  if (address.is_loopback()) {  // most addresses of that interface are not in its list
    membership.imr_ifindex = static_cast<int>(::if_nametoindex("lo"));
  }
  boost::asio::io_context context;
  Udp::socket receiver = BindUdp(context, configuration.group, configuration.discovery_port, true);
  SetOption(receiver, IP_ADD_MEMBERSHIP, membership);
  Udp::socket sender = BindUdp(context, unicast, 0, false);
  SetOption(sender, IP_MULTICAST_IF, membership);
  SetOption(sender, IP_MULTICAST_LOOP, 1);
  SetOption(sender, IP_MULTICAST_TTL, 0);  // it stays on this machine
  const Datagram datagram = MakeDatagram();
  sender.send_to(boost::asio::buffer(datagram), {group, configuration.discovery_port});
  return Receives(receiver, datagram);
}

}  // namespace

void CheckMulticast(const StackConfiguration& configuration, Findings& findings) {
  const std::string unicast = configuration.unicast.empty() ? kLoopback : configuration.unicast;
  const std::string group = configuration.group + ':' + std::to_string(configuration.discovery_port);
  if (!configuration.discovery) {
    findings.push_back(Finding::Warning(kCheck, "discovery is switched off: no service is found",
                                        "take \"service-discovery.enable\" out of the configuration"));
    return;
  }
  try {
    if (ComesBack(configuration, unicast)) {
      findings.push_back(Finding::Ok(kCheck, "a message to " + group + " came back to " + unicast));
    } else {
      findings.push_back(Finding::Problem(kCheck, "a message to " + group + " did not come back to " + unicast,
                                          "let a packet filter of this machine pass UDP to " + group));
    }
  } catch (const boost::system::system_error& error) {
    findings.push_back(Finding::Problem(
        kCheck, "no message can be sent to " + group + " from " + unicast + ": " + error.code().message(),
        error.code() == boost::asio::error::address_in_use
            ? "end the program that holds the port without sharing it"
            : "have \"unicast\" name an address of this machine, \"service-discovery.multicast\" a multicast group, "
              "and the interface up"));
  }
}

}  // namespace tarn7::tool
