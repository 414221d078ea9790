#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "embedded_stack/log.h"

namespace vsomeip_v3::embedded {

// Runs handlers one after the other, in the order in which they were pushed. When one takes too long, the next one
// runs beside it on another thread, up to ten. Thread-safe.
class Dispatcher {
 public:
  using Task = std::function<void()>;

  static constexpr std::chrono::milliseconds kPatience{100};  // then a handler is overtaken
  static constexpr std::size_t kMaxThreads = 10;
  static constexpr std::size_t kMaxMessages = 8192;             // waiting
  static constexpr std::size_t kMaxMessageBytes = 128U << 20U;  // in them
  static constexpr std::size_t kMaxTasks = 65536;               // of any kind

  explicit Dispatcher(std::shared_ptr<Log> log);
  ~Dispatcher();
  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;

  // Tasks pushed before are kept until then.
  void Start();

  // False if the queue is full, which it is sooner for messages than for everything else. `message_bytes` is 0 for
  // everything else.
  bool Push(Task task, std::size_t message_bytes);

  // Forgets what waits, and waits for what runs until the deadline, except for a handler that calls this itself.
  void Stop(std::chrono::milliseconds deadline);

 private:
  struct Core;
  std::shared_ptr<Log> log_;
  std::mutex mutex_;  // guards core_, which a stop replaces
  std::shared_ptr<Core> core_;
};

}  // namespace vsomeip_v3::embedded
