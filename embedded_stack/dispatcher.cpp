#include "embedded_stack/dispatcher.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vsomeip/message.hpp"

namespace vsomeip_v3::embedded {

using Clock = std::chrono::steady_clock;

// What the threads share. They own it too, so that a handler that never returned leaves nothing dangling.
//
// At most one thread leads, that is, takes tasks. All others wait for something to receive, for a call of Wake(), or
// for the leader to have been in one handler for too long: then one of them takes the lead over. A former leader joins
// the waiting ones when its handler returns.
struct Dispatcher::Core : std::enable_shared_from_this<Core> {
  explicit Core(std::shared_ptr<Log> its_log) : log(std::move(its_log)) {}
  ~Core() {
    if (poll >= 0) close(poll);
    if (wake >= 0) close(wake);
  }

  void Control(int operation, int descriptor, std::uint32_t events) const;
  void Run();
  bool CanLead() const { return waiting > 1 || threads.size() <= kMaxHandlers; }  // one must stay to receive
  bool MayLead() const;
  void Lead(std::unique_lock<std::mutex>& lock);
  void Await(std::unique_lock<std::mutex>& lock);
  void Wake() const;
  bool AddThread();
  std::size_t& RequestsOf(std::uint32_t address);

  const std::shared_ptr<Log> log;
  int poll = -1;      // set by Open()
  int wake = -1;      // an eventfd, likewise
  Receiver receiver;  // set before the first thread
  std::mutex mutex;   // guards everything below
  std::condition_variable finished_changed;
  std::deque<Task> tasks;
  std::size_t message_bytes = 0;
  std::unordered_map<std::uint32_t, std::size_t> requests;  // that wait, by address; those without go now and then
  std::vector<std::thread> threads;
  std::set<std::thread::id> finished;
  std::thread::id leader;  // none: nobody leads
  Clock::time_point task_began;
  bool is_watched = false;  // a waiting thread looks when the leader's patience has run out
  std::size_t waiting = 0;  // threads that are not in a handler
  bool is_short_of_threads = false;
  bool stopping = false;
};

namespace {

[[noreturn]] void Fail(const char* what) { throw std::runtime_error(std::string(what) + ": " + std::strerror(errno)); }

// What this thread receives for: it looks at the tasks anyway when that is done.
thread_local const void* receiving_for = nullptr;

void Call(Dispatcher::Task& task) {
  if (task.function) return task.function();
  if (*task.handler->registered && task.message) task.handler->call(task.message);
}

}  // namespace

// Each event goes to one thread.
void Dispatcher::Core::Control(int operation, int descriptor, std::uint32_t events) const {
  epoll_event event{};
  event.events = events;
  event.data.fd = descriptor;
  if (epoll_ctl(poll, operation, descriptor, &event) != 0 && operation == EPOLL_CTL_ADD) Fail("cannot wait for input");
}

void Dispatcher::Core::Wake() const {
  const std::uint64_t one = 1;
  if (wake >= 0 && write(wake, &one, sizeof one) < 0) log->Error("cannot wake a thread: ", std::strerror(errno));
}

std::size_t& Dispatcher::Core::RequestsOf(std::uint32_t address) {
  constexpr std::size_t kMany = 64;
  if (requests.size() >= kMany + tasks.size() && requests.count(address) == 0) {
    for (auto each = requests.begin(); each != requests.end();) {
      each = each->second > 0 ? std::next(each) : requests.erase(each);
    }
  }
  return requests[address];
}

// Without another one, the only thread runs the handler itself and receives again after that.
bool Dispatcher::Core::AddThread() {
  try {
    threads.emplace_back([self = shared_from_this()] { self->Run(); });
  } catch (const std::exception& error) {  // of the system, or no memory
    if (!std::exchange(is_short_of_threads, true)) log->Error("cannot start a thread: ", error.what());
    return false;
  }
  is_short_of_threads = false;
  ++waiting;
  return true;
}

void Dispatcher::Core::Run() {
  std::unique_lock<std::mutex> lock(mutex);
  while (!stopping) {
    if (MayLead()) {
      Lead(lock);
    } else {
      Await(lock);
    }
  }
  finished.insert(std::this_thread::get_id());
  finished_changed.notify_all();
}

bool Dispatcher::Core::MayLead() const {
  if (tasks.empty() || !CanLead()) return false;
  return leader == std::thread::id{} || Clock::now() >= task_began + kPatience;
}

void Dispatcher::Core::Lead(std::unique_lock<std::mutex>& lock) {
  leader = std::this_thread::get_id();
  if (waiting == 1) AddThread();
  --waiting;
  while (leader == std::this_thread::get_id() && !tasks.empty() && !stopping) {
    Task task = std::move(tasks.front());
    message_bytes -= task.message_bytes;
    if (task.requester != 0) --RequestsOf(task.requester);
    tasks.pop_front();
    task_began = Clock::now();
    if (!tasks.empty() && !is_watched) Wake();
    lock.unlock();
    try {
      Call(task);
    } catch (const std::exception& error) {
      log->Error("a handler threw an exception: ", error.what());
    } catch (...) {
      log->Error("a handler threw something that is no exception");
    }
    task = {};  // what it holds may call back, so not under the lock
    lock.lock();
  }
  ++waiting;
  if (leader == std::this_thread::get_id()) leader = {};
}

void Dispatcher::Core::Await(std::unique_lock<std::mutex>& lock) {
  const bool watches = !tasks.empty() && !is_watched && CanLead();
  int timeout = -1;
  if (watches) {
    is_watched = true;
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(task_began + kPatience - Clock::now());
    timeout = static_cast<int>(std::max(rest.count(), std::chrono::milliseconds::rep{1}));
  }
  lock.unlock();
  epoll_event event{};
  if (epoll_wait(poll, &event, 1, timeout) > 0 && event.data.fd != wake) {
    receiving_for = this;
    receiver();
    receiving_for = nullptr;
  }
  lock.lock();
  if (watches) is_watched = false;
}

Dispatcher::Dispatcher(std::shared_ptr<Log> log) : core_(std::make_shared<Core>(std::move(log))) {}

Dispatcher::~Dispatcher() { Stop(kPatience); }

void Dispatcher::Open(int descriptor) {
  if (core_->poll < 0) core_->poll = epoll_create1(EPOLL_CLOEXEC);
  if (core_->poll < 0) Fail("cannot wait for input");
  if (core_->wake < 0) {
    core_->wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (core_->wake < 0) Fail("cannot wait for input");
    core_->Control(EPOLL_CTL_ADD, core_->wake, EPOLLIN | EPOLLET);  // one thread for each Wake(), nothing to be read
  }
  core_->Control(EPOLL_CTL_ADD, descriptor, EPOLLIN | EPOLLONESHOT);
}

void Dispatcher::Start(Receiver receiver) {
  const std::lock_guard<std::mutex> lock(core_->mutex);
  core_->receiver = std::move(receiver);
  if (!core_->stopping && !core_->AddThread()) throw std::runtime_error("no thread to receive with");
}

void Dispatcher::WatchAgain(int descriptor) { core_->Control(EPOLL_CTL_MOD, descriptor, EPOLLIN | EPOLLONESHOT); }

bool Dispatcher::Push(Task task) {
  Core& core = *core_;
  const std::lock_guard<std::mutex> lock(core.mutex);
  if (core.tasks.size() >= (task.message_bytes > 0 ? kMaxMessages : kMaxTasks)) return false;
  if (task.message_bytes > kMaxMessageBytes - core.message_bytes) return false;
  std::size_t uncounted = 0;
  std::size_t& requests = task.requester != 0 ? core.RequestsOf(task.requester) : uncounted;
  if (task.requester != 0 && requests >= kMaxMessages - core.tasks.size()) return false;
  const std::size_t bytes = task.message_bytes;
  core.tasks.push_back(std::move(task));
  core.message_bytes += bytes;
  ++requests;
  // While a handler runs, only a thread that watches it is needed, and that one needs no further call.
  const bool needs_thread = core.leader == std::thread::id{} || !core.is_watched;
  if (needs_thread && receiving_for != &core) core.Wake();
  return true;
}

// Their turn comes all the same, because what they hold may call back, and not under the lock.
std::size_t Dispatcher::DropRequests(std::uint32_t requester, message_t method) {
  const std::lock_guard<std::mutex> lock(core_->mutex);
  std::size_t count = 0;
  for (Task& task : core_->tasks) {
    if (task.requester != requester || !task.message || task.message->get_message() != method) continue;
    core_->message_bytes -= std::exchange(task.message_bytes, 0);
    task.message.reset();
    ++count;
  }
  return count;
}

void Dispatcher::Stop(std::chrono::milliseconds deadline) {
  std::deque<Task> forgotten;  // destroyed without a lock
  std::vector<std::thread> threads;
  std::set<std::thread::id> finished;
  {
    std::unique_lock<std::mutex> lock(core_->mutex);
    core_->stopping = true;
    if (core_->wake >= 0) core_->Control(EPOLL_CTL_MOD, core_->wake, EPOLLIN);  // one thread after the other
    core_->Wake();
    forgotten.swap(core_->tasks);
    core_->message_bytes = 0;
    core_->requests = {};
    const auto all_ended = [this] {
      for (const std::thread& thread : core_->threads) {
        if (thread.get_id() != std::this_thread::get_id() && core_->finished.count(thread.get_id()) == 0) return false;
      }
      return true;
    };
    if (!core_->finished_changed.wait_for(lock, deadline, all_ended)) {
      core_->log->Error("a handler did not return in time for stop(); it is left running");
    }
    threads.swap(core_->threads);
    finished = core_->finished;
  }
  for (std::thread& thread : threads) {
    if (finished.count(thread.get_id()) != 0) {
      thread.join();
    } else {
      thread.detach();
    }
  }
}

}  // namespace vsomeip_v3::embedded
