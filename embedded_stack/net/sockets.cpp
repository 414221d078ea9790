#include "embedded_stack/net/sockets.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <netinet/udp.h>
#include <string>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vsomeip_v3::embedded {

namespace {

constexpr std::uint32_t kOwnNetwork = 0x7F4D0000;  // 127.77.0.0/16
constexpr std::uint32_t kOwnHosts = 0xFFFE;        // all but the first and the last
constexpr int kBuffer = 4 << 20;                   // of each direction; the kernel gives what it may
constexpr std::size_t kMessagesPerTurn = 256;      // from one socket; then others have their turn

[[noreturn]] void Fail(const std::string& what) { throw std::runtime_error(what + ": " + std::strerror(errno)); }

std::string Name(std::uint32_t address, port_t port) { return AddressText(address) + ":" + std::to_string(port); }

// The group is joined on the interface that the address belongs to: by index for the loopback interface, all of whose
// addresses but one are unknown to the kernel's table, by address for any other.
ip_mreqn Membership(std::uint32_t group, std::uint32_t address) {
  ip_mreqn membership{};
  membership.imr_multiaddr.s_addr = htonl(group);
  membership.imr_address.s_addr = htonl(address);
  if (address >> 24U == 127) membership.imr_ifindex = static_cast<int>(if_nametoindex("lo"));
  return membership;
}

// The peer of a message to send, or room for that of one to receive.
struct PeerName {
  explicit PeerName(const Endpoint& peer = {}) {
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(peer.address);
    address.sin_port = htons(peer.port);
  }
  Endpoint Peer() const { return {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)}; }
  msghdr Message(iovec* parts, std::size_t count) {
    msghdr message{};
    message.msg_name = &address;
    message.msg_namelen = sizeof address;
    message.msg_iov = parts;
    message.msg_iovlen = count;
    return message;
  }
  sockaddr_in address{};
};

// Of the datagrams that were received together; `size` if it was one.
std::size_t SizeOfEach(msghdr& message, std::size_t size) {
  int each = 0;
  cmsghdr* const option = CMSG_FIRSTHDR(&message);
  const bool is_told = option != nullptr && option->cmsg_level == IPPROTO_UDP && option->cmsg_type == UDP_GRO;
  if (is_told) std::memcpy(&each, CMSG_DATA(option), sizeof each);
  return each > 0 ? static_cast<std::size_t>(each) : size;
}

bool IsFull(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == ENOBUFS; }

template <typename Value>
void SetOption(int socket, int option, const Value& value, const char* what) {
  if (setsockopt(socket, IPPROTO_IP, option, &value, sizeof value) != 0) Fail(what);
}

}  // namespace

std::string AddressText(std::uint32_t address) {
  std::array<char, INET_ADDRSTRLEN> text{};
  const in_addr binary{htonl(address)};
  return inet_ntop(AF_INET, &binary, text.data(), text.size());
}

Sockets::Port::~Port() {
  if (socket >= 0) close(socket);
}

void Sockets::Open(const Configuration& configuration) {
  settings_ = configuration.discovery;
  ready_ = epoll_create1(EPOLL_CLOEXEC);
  if (ready_ < 0) Fail("cannot wait for input");
  try {
    if (configuration.unicast) {
      TakeAddress(*configuration.unicast);
    } else {
      TakeOwnAddress();
    }
    if (settings_.enabled) OpenDiscovery();
  } catch (...) {
    Close();
    throw;
  }
}

void Sockets::TakeAddress(std::uint32_t address) {
  address_ = address;
  auto port = Bind(Channel::kData, address_, kDataPort, false);
  if (port == nullptr) {
    throw std::runtime_error(Name(address_, kDataPort) +
                             " is taken: each application needs a unicast address of its own, or none configured");
  }
  data_.push_back(std::move(port));
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
Sockets::PortPointer Sockets::Bind(Channel channel, std::uint32_t address, port_t port, bool shared) {
  auto result = std::make_unique<Port>(channel, data_.size());
  result->socket = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (result->socket < 0) Fail("cannot open a socket");
  const int yes = 1;
  if (shared) setsockopt(result->socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  setsockopt(result->socket, SOL_SOCKET, SO_RCVBUF, &kBuffer, sizeof kBuffer);
  // More than the kernel keeps for a host that does not answer: who sends to one can still send to others.
  setsockopt(result->socket, SOL_SOCKET, SO_SNDBUF, &kBuffer, sizeof kBuffer);
  // Datagrams that were sent together are to stay so until we read them. Old kernels cannot.
  if (channel == Channel::kData) setsockopt(result->socket, IPPROTO_UDP, UDP_GRO, &yes, sizeof yes);
  const PeerName name({address, port});
  if (bind(result->socket, reinterpret_cast<const sockaddr*>(&name.address), sizeof name.address) != 0) {
    if (errno == EADDRINUSE) return nullptr;
    Fail("cannot bind " + Name(address, port));
  }
  epoll_event event{};
  event.events = EPOLLIN | EPOLLET;  // each comes to the end of the queue when it has become ready, and only then
  event.data.ptr = result.get();
  if (epoll_ctl(ready_, EPOLL_CTL_ADD, result->socket, &event) != 0) Fail("cannot wait for input");
  return result;
}

// The group's port is shared, and everybody gets what comes. Discovery's own port is not, so that no other program
// takes what is sent to us. Only where a program has the port at all addresses already, it is, and from then on no
// longer.
void Sockets::OpenDiscovery() {
  discovery_ = Bind(Channel::kDiscoveryUnicast, address_, settings_.port, false);
  is_discovery_exclusive_ = discovery_ != nullptr;
  if (!discovery_) discovery_ = Bind(Channel::kDiscoveryUnicast, address_, settings_.port, true);
  group_ = Bind(Channel::kDiscoveryMulticast, settings_.multicast, settings_.port, true);
  if (!discovery_ || !group_) {
    throw std::runtime_error("discovery port " + std::to_string(settings_.port) +
                             " is taken by a program that does not share it");
  }
  const int no = 0;
  setsockopt(discovery_->socket, SOL_SOCKET, SO_REUSEADDR, &no, sizeof no);
  const ip_mreqn membership = Membership(settings_.multicast, address_);
  SetOption(group_->socket, IP_ADD_MEMBERSHIP, membership, "cannot join the discovery group");
  SetOption(group_->socket, IP_MULTICAST_ALL, 0, "cannot keep to the discovery group");
  SetOption(discovery_->socket, IP_MULTICAST_IF, membership, "cannot choose the discovery interface");
  SetOption(discovery_->socket, IP_MULTICAST_LOOP, 1, "cannot reach nodes on this machine");
  SetOption(discovery_->socket, IP_MULTICAST_TTL, IsLoopback() ? 0 : 1, "cannot limit the hops");
}

void Sockets::Close() {
  data_.clear();
  discovery_.reset();
  group_.reset();
  if (ready_ >= 0) close(ready_);
  ready_ = -1;
}

std::size_t Sockets::AddDataSocket(port_t port) {
  auto added = Bind(Channel::kData, address_, port, false);
  if (!added) throw std::runtime_error(Name(address_, port) + " is taken");
  data_.push_back(std::move(added));
  return data_.size() - 1;
}

Endpoint Sockets::LocalEndpoint(std::size_t socket) const {
  PeerName name;
  socklen_t size = sizeof name.address;
  getsockname(data_.at(socket)->socket, reinterpret_cast<sockaddr*>(&name.address), &size);
  return {address_, name.Peer().port};
}

std::size_t Sockets::ReceiveBuffer() const {
  int granted = 0;
  socklen_t size = sizeof granted;
  getsockopt(data_.at(0)->socket, SOL_SOCKET, SO_RCVBUF, &granted, &size);
  return static_cast<std::size_t>(granted);
}

// Datagrams of one size go out together, which saves most of the time that each takes alone; the kernel takes them
// apart again for a receiver that does not want them like that.
std::size_t Sockets::Send(std::size_t socket, const Endpoint& to, Datagrams& datagrams) {
  if (socket >= data_.size()) return datagrams.Count();  // closed meanwhile
  const int descriptor = data_[socket]->socket;
  PeerName name(to);
  if (datagrams.Count() > 1 && joins_datagrams_) {
    msghdr message = name.Message(datagrams.Parts(), Datagrams::kPartsEach * datagrams.Count());
    const auto size = static_cast<std::uint16_t>(datagrams.Size());
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof size)] = {};
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* const option = CMSG_FIRSTHDR(&message);
    option->cmsg_level = IPPROTO_UDP;
    option->cmsg_type = UDP_SEGMENT;
    option->cmsg_len = CMSG_LEN(sizeof size);
    std::memcpy(CMSG_DATA(option), &size, sizeof size);
    if (sendmsg(descriptor, &message, 0) >= 0) return datagrams.Count();
    if (IsFull(errno)) return 0;
    const bool refused = errno == EINVAL || errno == EIO || errno == EMSGSIZE || errno == EOPNOTSUPP;
    if (refused) joins_datagrams_ = false;
  }
  for (std::size_t i = 0; i < datagrams.Count(); ++i) {
    const msghdr message = name.Message(datagrams.Parts(i), Datagrams::kPartsEach);
    if (sendmsg(descriptor, &message, 0) < 0 && IsFull(errno)) return i;
  }
  return datagrams.Count();
}

void Sockets::SendToGroup(const std::vector<std::uint8_t>& datagram) { SendDiscovery(settings_.multicast, datagram); }

void Sockets::SendDiscovery(std::uint32_t peer, const std::vector<std::uint8_t>& datagram) {
  if (!discovery_) return;
  const PeerName name({peer, settings_.port});
  // What fails is lost, like any datagram; discovery repeats itself.
  sendto(discovery_->socket, datagram.data(), datagram.size(), 0, reinterpret_cast<const sockaddr*>(&name.address),
         sizeof name.address);
}

void Sockets::Receive() {
  std::array<epoll_event, 8> events{};
  const int count = epoll_wait(ready_, events.data(), static_cast<int>(events.size()), 0);
  for (int i = 0; i < count; ++i) {
    epoll_event& event = events[static_cast<std::size_t>(i)];
    const Port& port = *static_cast<const Port*>(event.data.ptr);
    if (Drain(port)) continue;
    event.events = EPOLLIN | EPOLLET;  // to the end of the queue with it
    epoll_ctl(ready_, EPOLL_CTL_MOD, port.socket, &event);
  }
}

// True if there is no more.
bool Sockets::Drain(const Port& port) {
  for (std::size_t messages = 0; messages < kMessagesPerTurn;) {
    PeerName name;
    iovec whole{buffer_.data(), buffer_.size()};
    msghdr message = name.Message(&whole, 1);
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = recvmsg(port.socket, &message, 0);
    if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EBADF)) return true;
    ++messages;
    if (size < 0) continue;  // an earlier datagram was refused by its receiver
    // Each datagram by itself, also where the kernel has kept several together.
    ByteView rest(buffer_.data(), static_cast<std::size_t>(size));
    const std::size_t each = SizeOfEach(message, rest.size());
    do {
      messages += receiver_(port.channel, port.index, name.Peer(), rest.Sub(0, each));
      rest = rest.Sub(each);
    } while (rest.size() > 0);
  }
  return false;
}

}  // namespace vsomeip_v3::embedded
