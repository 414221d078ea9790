#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "embedded_stack/handlers.h"
#include "embedded_stack/log.h"

namespace vsomeip_v3::embedded {

// Threads that receive, and that run handlers one after the other, in the order in which they were pushed. The thread
// that has received something runs what that brings about itself: no other one needs to wake up. There is always one
// left that receives. When a handler takes too long, the next one runs beside it on another thread, up to ten.
// Thread-safe, but for Open(). Started and stopped once.
class Dispatcher {
 public:
  // One of the two: the call of a message handler, if it is still registered, or any function.
  struct Task {
    SlotPointer<message_handler_t> handler;
    std::shared_ptr<vsomeip_v3::message> message;
    std::function<void()> function;
    std::size_t message_bytes = 0;
    std::uint32_t requester = 0;  // the address that a request came from
  };
  // Called when there is something to receive, and not again before WatchAgain(): one thread receives at a time.
  using Receiver = std::function<void()>;

  static constexpr std::chrono::milliseconds kPatience{100};    // then a handler is overtaken
  static constexpr std::size_t kMaxHandlers = 10;               // that run
  static constexpr std::size_t kMaxMessages = 8192;             // waiting
  static constexpr std::size_t kMaxMessageBytes = 128U << 20U;  // in them
  static constexpr std::size_t kMaxTasks = 65536;               // of any kind

  explicit Dispatcher(std::shared_ptr<Log> log);
  ~Dispatcher();
  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;

  // Before Start(). The descriptor can be read from when there is something to receive; until it is closed. Throws
  // std::runtime_error.
  void Open(int descriptor);
  void WatchAgain(int descriptor);
  // Tasks pushed before are kept until then. The receiver may be called for as long as a handler, or it itself, takes
  // to return after Stop(). Throws std::runtime_error if there is no thread to be had.
  void Start(Receiver receiver);

  // False if the queue is full, which it is sooner for messages than for all else. The requests of one address are
  // never more than the messages that there is still room for.
  bool Push(Task task);

  // Forgets the requests of a method that wait, of one address, and returns how many they were.
  std::size_t DropRequests(std::uint32_t requester, message_t method);

  // Forgets what waits, and waits for what runs until the deadline, except for a handler that calls this itself.
  void Stop(std::chrono::milliseconds deadline);

 private:
  struct Core;
  const std::shared_ptr<Core> core_;
};

}  // namespace vsomeip_v3::embedded
