#include "embedded_stack/net/sockets.h"

#include <net/if.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/multicast.hpp>

namespace vsomeip_v3::embedded {

namespace {

namespace asio = boost::asio;
using boost::asio::ip::address_v4;

constexpr std::uint32_t kOwnNetwork = 0x7F4D0000;  // 127.77.0.0/16
constexpr std::uint32_t kOwnHosts = 0xFFFE;        // all but the first and the last
constexpr int kReceiveBuffer = 4 << 20;            // the kernel gives what it may
constexpr int kDatagramsPerTurn = 64;              // then timers and the other sockets have their turn

[[noreturn]] void Fail(const std::string& what, const boost::system::error_code& error) {
  throw std::runtime_error(what + ": " + error.message());
}

std::string Name(std::uint32_t address, port_t port) {
  return address_v4(address).to_string() + ":" + std::to_string(port);
}

// The group is joined on the interface that the address belongs to: by index for the loopback interface, all of whose
// addresses but one are unknown to the kernel's table, by address for any other.
ip_mreqn Membership(std::uint32_t group, std::uint32_t address) {
  ip_mreqn membership{};
  membership.imr_multiaddr.s_addr = htonl(group);
  membership.imr_address.s_addr = htonl(address);
  if (address >> 24U == 127) membership.imr_ifindex = static_cast<int>(if_nametoindex("lo"));
  return membership;
}

template <typename Value>
void SetOption(int socket, int option, const Value& value, const char* what) {
  if (setsockopt(socket, IPPROTO_IP, option, &value, sizeof value) != 0) {
    Fail(what, boost::system::error_code(errno, boost::system::system_category()));
  }
}

}  // namespace

void Sockets::Open(const Configuration& configuration) {
  settings_ = configuration.discovery;
  if (configuration.unicast) {
    address_ = *configuration.unicast;
    data_.push_back(Bind(Channel::kData, address_, kDataPort, false));
    if (data_.back() == nullptr) {
      data_.clear();
      throw std::runtime_error(Name(address_, kDataPort) +
                               " is taken: each application needs a unicast address of its own, or none configured");
    }
  } else {
    TakeOwnAddress();
  }
  try {
    if (settings_.enabled) OpenDiscovery();
  } catch (...) {
    Close();
    throw;
  }
}

void Sockets::TakeOwnAddress() {
  const auto start = static_cast<std::uint32_t>(getpid());
  for (std::uint32_t attempt = 0; attempt < kOwnHosts; ++attempt) {
    address_ = kOwnNetwork | (1 + (start + attempt) % kOwnHosts);
    if (auto port = Bind(Channel::kData, address_, kDataPort, false)) {
      data_.push_back(std::move(port));
      return;
    }
  }
  throw std::runtime_error("no free address in 127.77.0.0/16: is port " + std::to_string(kDataPort) + " taken?");
}

// Null if the address is in use.
std::unique_ptr<Sockets::Port> Sockets::Bind(Channel channel, std::uint32_t address, port_t port, bool shared) {
  auto result = std::make_unique<Port>(io_, channel, data_.size());
  Udp::socket& socket = result->socket;
  boost::system::error_code error;
  socket.open(Udp::v4(), error);
  if (error) Fail("cannot open a socket", error);
  if (shared) socket.set_option(asio::socket_base::reuse_address(true));
  socket.non_blocking(true);
  socket.native_non_blocking(true);
  boost::system::error_code ignored;
  socket.set_option(asio::socket_base::receive_buffer_size(kReceiveBuffer), ignored);
  socket.bind({address_v4(address), port}, error);
  if (error == asio::error::address_in_use) return nullptr;
  if (error) Fail("cannot bind " + Name(address, port), error);
  return result;
}

// Discovery's own port is shared, because a node at the wildcard address may be there too; the group's always is.
void Sockets::OpenDiscovery() {
  discovery_ = Bind(Channel::kDiscoveryUnicast, address_, settings_.port, true);
  group_ = Bind(Channel::kDiscoveryMulticast, settings_.multicast, settings_.port, true);
  if (!discovery_ || !group_) {
    throw std::runtime_error("discovery port " + std::to_string(settings_.port) +
                             " is taken by a program that does not share it");
  }
  const ip_mreqn membership = Membership(settings_.multicast, address_);
  SetOption(group_->socket.native_handle(), IP_ADD_MEMBERSHIP, membership, "cannot join the discovery group");
  SetOption(group_->socket.native_handle(), IP_MULTICAST_ALL, 0, "cannot keep to the discovery group");
  SetOption(discovery_->socket.native_handle(), IP_MULTICAST_IF, membership, "cannot choose the discovery interface");
  SetOption(discovery_->socket.native_handle(), IP_MULTICAST_LOOP, 1, "cannot reach nodes on this machine");
  SetOption(discovery_->socket.native_handle(), IP_MULTICAST_TTL, IsLoopback() ? 0 : 1, "cannot limit the hops");
}

void Sockets::Close() {
  boost::system::error_code ignored;
  for (const auto& port : data_) port->socket.close(ignored);
  if (discovery_) discovery_->socket.close(ignored);
  if (group_) group_->socket.close(ignored);
  data_.clear();
  discovery_.reset();
  group_.reset();
  started_ = false;
}

void Sockets::Start() {
  started_ = true;
  for (const auto& port : data_) Receive(port);
  if (discovery_) Receive(discovery_);
  if (group_) Receive(group_);
}

std::size_t Sockets::AddDataSocket(port_t port) {
  std::shared_ptr<Port> added = Bind(Channel::kData, address_, port, false);
  if (!added) throw std::runtime_error(Name(address_, port) + " is taken");
  data_.push_back(added);
  if (started_) Receive(added);
  return data_.size() - 1;
}

Endpoint Sockets::LocalEndpoint(std::size_t socket) const {
  boost::system::error_code ignored;
  return {address_, data_.at(socket)->socket.local_endpoint(ignored).port()};
}

bool Sockets::Send(std::size_t socket, const Endpoint& to, const std::vector<std::uint8_t>& datagram) {
  if (socket >= data_.size()) return true;  // closed meanwhile
  boost::system::error_code error;
  data_[socket]->socket.send_to(asio::buffer(datagram), {address_v4(to.address), to.port}, 0, error);
  return error != asio::error::would_block && error != asio::error::no_buffer_space;
}

void Sockets::SendToGroup(const std::vector<std::uint8_t>& datagram) { SendDiscovery(settings_.multicast, datagram); }

void Sockets::SendDiscovery(std::uint32_t peer, const std::vector<std::uint8_t>& datagram) {
  if (!discovery_) return;
  boost::system::error_code lost;  // like any datagram; discovery repeats itself
  discovery_->socket.send_to(asio::buffer(datagram), {address_v4(peer), settings_.port}, 0, lost);
}

void Sockets::Receive(const std::shared_ptr<Port>& port) {
  port->socket.async_wait(Udp::socket::wait_read, [this, port](const boost::system::error_code& error) {
    if (error == asio::error::operation_aborted || !port->socket.is_open()) return;
    Drain(*port);
    Receive(port);
  });
}

void Sockets::Drain(Port& port) {
  for (int i = 0; i < kDatagramsPerTurn; ++i) {
    Udp::endpoint from;
    boost::system::error_code error;
    const std::size_t size = port.socket.receive_from(asio::buffer(buffer_), from, 0, error);
    if (error == asio::error::would_block || error == asio::error::bad_descriptor) return;
    if (error) continue;  // an earlier datagram was refused by its receiver
    receiver_(port.channel, port.index, {from.address().to_v4().to_uint(), from.port()}, {buffer_.data(), size});
  }
}

}  // namespace vsomeip_v3::embedded
