#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "embedded_stack/configuration.h"
#include "embedded_stack/wire/byte_view.h"
#include "embedded_stack/wire/discovery_message.h"

namespace vsomeip_v3::embedded {

// The UDP sockets of one application and the address they are bound to. Opening, closing and sending are not
// synchronized; receiving happens on the thread that runs the io_context.
class Sockets {
 public:
  static constexpr port_t kDataPort = 30509;

  enum class Channel { kData, kDiscoveryUnicast, kDiscoveryMulticast };
  // `socket` is the index of the data socket.
  using Receiver = std::function<void(Channel channel, std::size_t socket, const Endpoint& from, ByteView datagram)>;

  Sockets(boost::asio::io_context& io, Receiver receiver) : io_(io), receiver_(std::move(receiver)) {}

  // Takes the configured address, or else a free one in 127.77.0.0/16: the address is the application's own because
  // nobody else can bind the data port there. Throws std::runtime_error.
  void Open(const Configuration& configuration);
  void Close();
  bool IsOpen() const { return !data_.empty(); }

  // Begins to receive.
  void Start();

  // Another data socket, at any port if `port` is 0. Throws std::runtime_error.
  std::size_t AddDataSocket(port_t port);
  std::size_t DataSocketCount() const { return data_.size(); }
  Endpoint LocalEndpoint(std::size_t socket) const;

  std::uint32_t Address() const { return address_; }
  bool IsLoopback() const { return address_ >> 24U == 127; }

  // False if the socket's buffer is full. Every other failure counts as sent: the datagram is lost, as datagrams are.
  bool Send(std::size_t socket, const Endpoint& to, const std::vector<std::uint8_t>& datagram);
  // To the discovery group, or to one peer's discovery port.
  void SendToGroup(const std::vector<std::uint8_t>& datagram);
  void SendDiscovery(std::uint32_t peer, const std::vector<std::uint8_t>& datagram);

 private:
  using Udp = boost::asio::ip::udp;
  struct Port {  // a socket and what it is for
    Port(boost::asio::io_context& io, Channel its_channel, std::size_t its_index)
        : socket(io), channel(its_channel), index(its_index) {}
    Udp::socket socket;
    Channel channel;
    std::size_t index;
  };

  void TakeOwnAddress();
  void OpenDiscovery();
  std::unique_ptr<Port> Bind(Channel channel, std::uint32_t address, port_t port, bool shared);
  void Receive(const std::shared_ptr<Port>& port);
  void Drain(Port& port);

  boost::asio::io_context& io_;
  Receiver receiver_;
  DiscoverySettings settings_;
  std::uint32_t address_ = 0;
  bool started_ = false;
  std::vector<std::shared_ptr<Port>> data_;
  std::shared_ptr<Port> discovery_;  // null if discovery is switched off
  std::shared_ptr<Port> group_;
  std::array<std::uint8_t, 65536> buffer_{};
};

}  // namespace vsomeip_v3::embedded
