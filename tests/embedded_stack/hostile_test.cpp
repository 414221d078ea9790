// Packets that no well-behaved node sends, written by hand and sent from a plain socket.
#include <arpa/inet.h>
#include <cstdio>
#include <fstream>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/embedded_stack/test_node.h"

namespace embedded_stack_test {
namespace {

constexpr std::uint16_t kDataPort = 30509;
constexpr std::uint16_t kDiscoveryPort = 31490;  // not the usual one: garbage for us only

// A UDP socket at 127.0.0.99, at discovery's port if `port` says so.
class Intruder {
 public:
  explicit Intruder(std::uint16_t port = 0) : socket_(::socket(AF_INET, SOCK_DGRAM, 0)) {
    const sockaddr_in own = Address("127.0.0.99", port);
    const int yes = 1;
    setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    const timeval limit{10, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) throw std::runtime_error("bind");
  }
  Intruder(const Intruder&) = delete;
  Intruder& operator=(const Intruder&) = delete;
  ~Intruder() { close(socket_); }

  void Send(const std::string& to, std::uint16_t port, const Bytes& bytes) const {
    const sockaddr_in peer = Address(to, port);
    sendto(socket_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
  }
  Bytes Receive() const {
    Bytes buffer(65536);
    const ssize_t size = recv(socket_, buffer.data(), buffer.size(), 0);
    buffer.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return buffer;
  }

 private:
  static sockaddr_in Address(const std::string& address, std::uint16_t port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &result.sin_addr);
    return result;
  }
  int socket_;
};

// Applications take addresses in 127.77.0.0/16, and the last 16 bits are the client id.
std::string AddressOf(Node& node) {
  const vsomeip::client_t id = node->get_client();
  return "127.77." + std::to_string(id >> 8U) + "." + std::to_string(id & 0xFFU);
}

Bytes Request(Bytes changed_bytes = {}, std::size_t at = 0) {
  Bytes request{0x47, 0x11, 0x00, 0x10, 0, 0, 0, 8, 0x12, 0x34, 0x00, 0x01, 0x01, 0x03, 0x00, 0x00};
  std::copy(changed_bytes.begin(), changed_bytes.end(), request.begin() + static_cast<std::ptrdiff_t>(at));
  return request;
}

TEST(HostileTest, WrongRequestsAreAnsweredOrDropped) {
  Provider provider({0xAB});
  Client client;
  ASSERT_TRUE(client.availability.WaitForLast(true));
  const Intruder intruder;
  struct Case {
    const char* what;
    Bytes request;
    int code;  // of the error response; -1: none
  };
  const Case cases[] = {
      {"unknown service", Request({0x47, 0x12}), 0x02},
      {"unknown service, nothing to be returned",
       [] {
         Bytes b = Request({0x47, 0x12});
         b[14] = 1;
         return b;
       }(),
       -1},
      {"unknown method", Request({0x77}, 3), -1},
      {"protocol version", Request({0x02}, 12), 0x07},
      {"interface version", Request({0x04}, 13), 0x08},
      {"length beyond the datagram", Request({9}, 7), 0x09},
      {"length below the header", Request({7}, 7), 0x09},
      {"length 0", Request({0}, 7), -1},
      {"a malformed response is no request",
       [] {
         Bytes b = Request({9}, 7);
         b[14] = 0x80;
         return b;
       }(),
       -1},
      {"message type that does not exist", Request({0x13}, 14), -1},
      {"response that nobody waits for", Request({0x80}, 14), -1},
      {"header cut off", Bytes(15, 0), -1},
      {"nothing", {}, -1},
      {"segment without bytes", Request({0x20}, 14), -1},
  };
  const Bytes valid = Request();
  for (const Case& test : cases) {
    intruder.Send(AddressOf(provider), kDataPort, test.request);
    if (test.code >= 0) {
      Bytes expected = test.request;
      expected[7] = 8;
      expected[12] = 1;
      expected[14] = 0x81;
      expected[15] = static_cast<vsomeip::byte_t>(test.code);
      EXPECT_EQ(intruder.Receive(), expected) << test.what;
    }
    intruder.Send(AddressOf(provider), kDataPort, valid);  // whatever was not answered shows by its absence
    EXPECT_EQ(intruder.Receive(), (Bytes{0x47, 0x11, 0, 0x10, 0, 0, 0, 9, 0x12, 0x34, 0, 1, 1, 3, 0x80, 0, 0xAB}))
        << test.what;
  }
  Bytes two = valid;
  two.insert(two.end(), valid.begin(), valid.end());
  intruder.Send(AddressOf(provider), kDataPort, two);
  EXPECT_EQ(intruder.Receive().size(), 17U);
  EXPECT_EQ(intruder.Receive().size(), 17U);
}

// Valid packets with a few bytes changed at random, among them every kind of discovery entry and a segment.
TEST(HostileTest, GarbageBesideNormalTrafficDoesNoHarm) {
  const std::string file = testing::TempDir() + "embedded_stack_hostile" + std::to_string(getpid()) + ".json";
  std::ofstream(file) << R"({"service-discovery": {"port": )" << kDiscoveryPort << "}}";
  Provider provider({1}, kInstance, file);
  Client client(kInstance, file);
  std::remove(file.c_str());
  client.Subscribe();
  ASSERT_TRUE(client.values.WaitForLast({1}));
  const Intruder data;
  const Intruder discovery(kDiscoveryPort);
  Bytes offer{0xFF, 0xFF, 0x81, 0x00, 0,  0,  0, 48, 0,    0,    0,    1, 1, 1,  2, 0,    0xC0, 0, 0,
              0,    0,    0,    0,    16, 1,  0, 0,  0x10, 0x47, 0x12, 0, 1, 3,  0, 0,    3,    0, 0,
              0,    0,    0,    0,    0,  12, 0, 9,  4,    0,    127,  0, 0, 99, 0, 0x11, 0x10, 0};
  Bytes segment = Request({0x20}, 14);
  segment[7] = 28;
  segment.insert(segment.end(), {0, 0, 0, 1});
  segment.resize(36);
  std::mt19937 random(20240607);  // always the same packets
  const auto mutate = [&random](Bytes bytes, std::size_t from) {
    for (int i = 0; i < 3; ++i) bytes[from + random() % (bytes.size() - from)] = static_cast<vsomeip::byte_t>(random());
    if (random() % 8 == 0) bytes.resize(random() % bytes.size());
    return bytes;
  };
  const std::string targets[] = {AddressOf(provider), AddressOf(client)};
  for (int round = 0; round < 100; ++round) {
    for (int i = 0; i < 20; ++i) {
      offer[24] = static_cast<vsomeip::byte_t>(random() % 8);  // the type of the entry
      const std::string& target = targets[random() % 2];
      data.Send(target, kDataPort, mutate(Request(), 0));
      data.Send(target, kDataPort, mutate(segment, 4));
      discovery.Send(target, kDiscoveryPort, mutate(offer, 10));
      discovery.Send("224.244.224.245", kDiscoveryPort, mutate(offer, 10));
    }
    const auto byte = static_cast<vsomeip::byte_t>(round);
    ASSERT_EQ(client.Call(kReverse, {byte, 1}).bytes, (Bytes{1, byte})) << round;
  }
  provider.Notify({2});
  EXPECT_TRUE(client.values.WaitForLast({2}));
  EXPECT_TRUE(client->is_available(kService, kInstance));
}

}  // namespace
}  // namespace embedded_stack_test
