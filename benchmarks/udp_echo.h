#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "benchmarks/processors.h"

namespace benchmarks {

/// The least that a round trip between two processes over UDP takes: a process that sends back what it gets, and this
/// one, which blocks until that is there. Must be made while the process has one thread and is bound to no processor.
class UdpEcho {
 public:
  UdpEcho() : server_(Bind()), client_(Bind()) {
    Connect(client_, server_);
    Connect(server_, client_);
    const timeval limit{10, 0};
    setsockopt(client_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    process_ = fork();
    if (process_ == 0) {
      close(client_);
      Serve();
    }
    close(server_);
  }
  ~UdpEcho() {
    send(client_, nullptr, 0, 0);  // the end
    close(client_);
    waitpid(process_, nullptr, 0);
  }
  UdpEcho(const UdpEcho&) = delete;
  UdpEcho& operator=(const UdpEcho&) = delete;

  /// Sends the datagram and receives it again. Throws std::runtime_error when it does not come back.
  void Call(std::vector<unsigned char>& datagram) {
    const auto size = static_cast<ssize_t>(datagram.size());
    if (send(client_, datagram.data(), datagram.size(), 0) != size ||
        recv(client_, datagram.data(), datagram.size(), 0) != size) {
      throw std::runtime_error("no echo");
    }
  }

 private:
  static int Bind() {
    const int bound = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bound < 0 || bind(bound, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
      throw std::runtime_error("no socket");
    }
    return bound;
  }
  static void Connect(int from, int to) {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    if (getsockname(to, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        connect(from, reinterpret_cast<const sockaddr*>(&address), size) != 0) {
      throw std::runtime_error("no connection");
    }
  }
  [[noreturn]] void Serve() const {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    BindToProcessor(kServerProcessor);
    std::vector<unsigned char> datagram(65536);
    ssize_t size = 0;
    while ((size = recv(server_, datagram.data(), datagram.size(), 0)) > 0) {
      send(server_, datagram.data(), static_cast<std::size_t>(size), 0);
    }
    _exit(0);
  }

  const int server_;
  const int client_;
  pid_t process_ = 0;
};

}  // namespace benchmarks
