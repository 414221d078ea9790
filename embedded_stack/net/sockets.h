#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "embedded_stack/configuration.h"
#include "embedded_stack/wire/byte_view.h"
#include "embedded_stack/wire/discovery_message.h"
#include "embedded_stack/wire/transport_segment.h"

namespace vsomeip_v3::embedded {

// As it is written: four numbers with dots between them.
std::string AddressText(std::uint32_t address);

// The UDP sockets of one application and the address they are bound to. Not synchronized.
class Sockets {
 public:
  static constexpr port_t kDataPort = 30509;

  enum class Channel { kData, kDiscoveryUnicast, kDiscoveryMulticast };
  // `socket` is the index of the data socket. Returns how many messages were in the datagram.
  using Receiver =
      std::function<std::size_t(Channel channel, std::size_t socket, const Endpoint& from, ByteView datagram)>;

  explicit Sockets(Receiver receiver) : receiver_(std::move(receiver)) {}
  ~Sockets() { Close(); }
  Sockets(const Sockets&) = delete;
  Sockets& operator=(const Sockets&) = delete;

  // Takes the configured address, or else a free one in 127.77.0.0/16: the address is the application's own because
  // nobody else can bind the data port there. Throws std::runtime_error.
  void Open(const Configuration& configuration);
  void Close();
  bool IsOpen() const { return !data_.empty(); }

  // Can be read from when there is something to receive. Valid while open.
  int Descriptor() const { return ready_; }
  // Hands over some of what is there, in the order in which it came: discovery's acknowledgement before the first
  // value. What is left can be received with the next call.
  void Receive();

  // Another data socket, at any port if `port` is 0. Throws std::runtime_error.
  std::size_t AddDataSocket(port_t port);
  std::size_t DataSocketCount() const { return data_.size(); }
  Endpoint LocalEndpoint(std::size_t socket) const;

  std::uint32_t Address() const { return address_; }
  // Whether nobody else can receive what is sent to our discovery.
  bool IsDiscoveryExclusive() const { return is_discovery_exclusive_; }
  bool IsLoopback() const { return address_ >> 24U == 127; }

  // What the system has granted to each data socket, as it counts: with all that it needs beside the bytes.
  std::size_t ReceiveBuffer() const;

  // Returns how many went out: fewer if the socket's buffer is full. Every other failure counts as sent: the datagram
  // is lost, as datagrams are.
  std::size_t Send(std::size_t socket, const Endpoint& to, Datagrams& datagrams);
  // To the discovery group, or to one peer's discovery port.
  void SendToGroup(const std::vector<std::uint8_t>& datagram);
  void SendDiscovery(std::uint32_t peer, const std::vector<std::uint8_t>& datagram);

 private:
  struct Port {  // a socket and what it is for
    Port(Channel its_channel, std::size_t its_index) : channel(its_channel), index(its_index) {}
    ~Port();
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;
    int socket = -1;
    const Channel channel;
    const std::size_t index;
  };
  using PortPointer = std::unique_ptr<Port>;

  void TakeAddress(std::uint32_t address);
  void TakeOwnAddress();
  void OpenDiscovery();
  PortPointer Bind(Channel channel, std::uint32_t address, port_t port, bool shared);
  bool Drain(const Port& port);

  const Receiver receiver_;
  DiscoverySettings settings_;
  std::uint32_t address_ = 0;
  bool joins_datagrams_ = true;  // until the kernel refuses it
  int ready_ = -1;               // an epoll of all sockets
  std::vector<PortPointer> data_;
  bool is_discovery_exclusive_ = true;
  PortPointer discovery_;  // null if discovery is switched off
  PortPointer group_;
  std::array<std::uint8_t, 65536> buffer_{};
};

}  // namespace vsomeip_v3::embedded
