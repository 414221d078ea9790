// A live node of the embedded stack, which offers a service and uses another one, and a peer that sends it any packets.
// After each input the node must still answer the peer's questions, which also shows that it has read all packets.
#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <net/if.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "fuzz/check.h"
#include "fuzz/packets.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr vsomeip::service_t kOffered = 0x4711;
constexpr vsomeip::service_t kUsed = 0x4712;
constexpr vsomeip::instance_t kInstance = 1;
constexpr vsomeip::major_version_t kMajor = 3;
constexpr vsomeip::method_t kEcho = 0x0010;
constexpr vsomeip::event_t kField = 0x8010;
constexpr vsomeip::eventgroup_t kEventgroup = 0x21;

constexpr const char* kPeer = "127.0.0.99";
constexpr std::uint16_t kPeerPort = 31509;
constexpr std::uint16_t kNodePort = 30509;
constexpr std::uint16_t kDiscoveryPort = 31490;  // not the usual one: no other node hears what is sent here
constexpr const char* kDiscoveryGroup = "224.244.224.245";

class Node {
 public:
  Node() {
    const std::string file = "/tmp/node_fuzzer." + std::to_string(getpid()) + ".json";
    std::ofstream(file) << R"({"logging": {"level": "none"}, "service-discovery": {"port": )" << kDiscoveryPort << "}}";
    application_ = vsomeip::runtime::get()->create_application("fuzzed", file);
    const bool ready = application_->init();
    unlink(file.c_str());
    if (!ready) {
      throw std::runtime_error("the node cannot start");
    }
    application_->register_message_handler(
        kOffered, kInstance, kEcho, [this](const std::shared_ptr<vsomeip::message>& request) { Answer(request); });
    application_->offer_event(kOffered, kInstance, kField, {kEventgroup}, vsomeip::event_type_e::ET_FIELD);
    application_->offer_service(kOffered, kInstance, kMajor, 0);
    application_->notify(kOffered, kInstance, kField, vsomeip::runtime::get()->create_payload(Bytes{1, 2, 3}));

    application_->register_message_handler(
        kUsed, kInstance, vsomeip::ANY_METHOD, [](const std::shared_ptr<vsomeip::message>& message) {
          fuzz::Require(message->get_service() == kUsed, "only messages of the service come to its handler");
        });
    application_->request_service(kUsed, kInstance, kMajor);
    application_->request_event(kUsed, kInstance, kField, {kEventgroup}, vsomeip::event_type_e::ET_FIELD);
    application_->subscribe(kUsed, kInstance, kEventgroup, kMajor);
    thread_ = std::thread([this] { application_->start(); });
  }
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  ~Node() {
    application_->stop();
    thread_.join();
  }

  /// The last 16 bits of a node's own address are its client id.
  std::string Address() const {
    const unsigned id = application_->get_client();
    return "127.77." + std::to_string(id >> 8U) + '.' + std::to_string(id & 0xFFU);
  }

 private:
  void Answer(const std::shared_ptr<vsomeip::message>& request) {
    const auto response = vsomeip::runtime::get()->create_response(request);
    response->set_payload(request->get_payload());
    application_->send(response);
  }

  std::shared_ptr<vsomeip::application> application_;
  std::thread thread_;
};

class Socket {
 public:
  explicit Socket(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_DGRAM, 0)) {
    const int yes = 1;
    setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ip_mreqn loopback{};
    loopback.imr_ifindex = static_cast<int>(if_nametoindex("lo"));
    setsockopt(socket_, IPPROTO_IP, IP_MULTICAST_IF, &loopback, sizeof loopback);
    const int hops = 0;
    setsockopt(socket_, IPPROTO_IP, IP_MULTICAST_TTL, &hops, sizeof hops);
    const sockaddr_in own = Endpoint(kPeer, port);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) {
      throw std::runtime_error(std::string(kPeer) + ':' + std::to_string(port) + ": " + std::strerror(errno));
    }
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() { close(socket_); }

  void Send(const std::string& address, std::uint16_t port, const std::uint8_t* data, std::size_t size) const {
    const sockaddr_in peer = Endpoint(address, port);
    sendto(socket_, data, size, 0, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
  }

  /// Sends a question until the answer comes. Whatever else comes is passed over.
  template <typename IsAnswer>
  bool Ask(const std::string& address, std::uint16_t port, const Bytes& question, IsAnswer is_answer) const {
    constexpr int kTries = 5;
    constexpr int kPatience = 2000;  // milliseconds
    constexpr int kMostOthers = 100000;
    for (int attempt = 0; attempt < kTries; ++attempt) {
      Send(address, port, question.data(), question.size());
      pollfd input{socket_, POLLIN, 0};
      for (int others = 0; others < kMostOthers && poll(&input, 1, kPatience) == 1; ++others) {
        std::uint8_t datagram[65536];
        const ssize_t size = recv(socket_, datagram, sizeof datagram, 0);
        if (size > 0 && is_answer(datagram, static_cast<std::size_t>(size))) {
          return true;
        }
      }
    }
    return false;
  }

 private:
  static sockaddr_in Endpoint(const std::string& address, std::uint16_t port) {
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr);
    return endpoint;
  }

  int socket_;
};

class Peer {
 public:
  explicit Peer(std::string node) : node_(std::move(node)) {}

  /// The lowest two bits of the control byte: 1 discovery, 2 discovery to the group, else a message.
  void Send(const fuzz::Packet& packet) const {
    switch (packet.control & 0x3U) {
      case 1:
        return discovery_.Send(node_, kDiscoveryPort, packet.data, packet.size);
      case 2:
        return discovery_.Send(kDiscoveryGroup, kDiscoveryPort, packet.data, packet.size);
      default:
        return data_.Send(node_, kNodePort, packet.data, packet.size);
    }
  }

  /// A subscribe to an eventgroup that is not there, another one each time, is refused at once.
  bool DiscoveryAnswers() {
    ++question_;
    const auto high = static_cast<std::uint8_t>(0x80U | ((question_ >> 8U) & 0x7FU));
    const auto low = static_cast<std::uint8_t>(question_);
    const Bytes subscribe{0xFF, 0xFF, 0x81, 0x00, 0,  0,  0, 0x30, 0,    0,    0x12, 0x34, 1, 1,  2, 0,    0x40, 0,   0,
                          0,    0,    0,    0,    16, 6,  0, 0,    0x10, 0x47, 0x11, 0,    1, 3,  0, 0,    3,    0,   0,
                          high, low,  0,    0,    0,  12, 0, 9,    4,    0,    127,  0,    0, 99, 0, 0x11, 0x7B, 0x15};
    return discovery_.Ask(node_, kDiscoveryPort, subscribe, [&](const std::uint8_t* data, std::size_t size) {
      constexpr std::size_t kEntries = 24;
      constexpr std::size_t kEntrySize = 16;
      for (std::size_t entry = kEntries; entry + kEntrySize <= size; entry += kEntrySize) {
        if (data[entry] == 7 && data[entry + 14] == high && data[entry + 15] == low) {
          return true;
        }
      }
      return false;
    });
  }

  /// A request comes back with its payload, over the thread that runs the handlers.
  bool ServiceAnswers() {
    ++question_;
    Bytes request{0x47, 0x11, 0x00, 0x10, 0, 0, 0, 12, 0x7E, 0x57, 0, 1, 1, kMajor, 0, 0};
    for (unsigned shift = 32; shift > 0; shift -= 8) {
      request.push_back(static_cast<std::uint8_t>(question_ >> (shift - 8)));
    }
    Bytes answer = request;
    answer[14] = 0x80;
    return data_.Ask(node_, kNodePort, request, [&](const std::uint8_t* data, std::size_t size) {
      return size == answer.size() && std::equal(answer.begin(), answer.end(), data);
    });
  }

 private:
  const std::string node_;
  const Socket data_{kPeerPort};
  const Socket discovery_{kDiscoveryPort};
  std::uint32_t question_ = 0;
};

std::unique_ptr<Node> node;
std::unique_ptr<Peer> peer;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  try {
    node = std::make_unique<Node>();
    peer = std::make_unique<Peer>(node->Address());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "node_fuzzer: %s\n", error.what());
    std::exit(1);
  }
  std::atexit([] { node.reset(); });  // while the stack's own statics still exist
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMaxPackets = 16;
  for (const fuzz::Packet& packet : fuzz::SplitPackets(data, size, kMaxPackets)) {
    peer->Send(packet);
  }
  fuzz::Require(peer->DiscoveryAnswers(), "discovery still answers");
  fuzz::Require(peer->ServiceAnswers(), "the service still answers");
  return 0;
}
