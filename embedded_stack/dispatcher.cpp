#include "embedded_stack/dispatcher.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace vsomeip_v3::embedded {

using Clock = std::chrono::steady_clock;

// What the threads share. They own it too, so that a handler that never returned leaves nothing dangling.
//
// At most one thread leads, that is, takes tasks. Another takes the lead over when there is work and the leader has
// been in one handler for too long; the former leader becomes an idle thread when its handler returns.
struct Dispatcher::Core : std::enable_shared_from_this<Core> {
  explicit Core(std::shared_ptr<Log> its_log) : log(std::move(its_log)) {}

  void Run();
  bool WaitForLead(std::unique_lock<std::mutex>& lock);
  void Lead(std::unique_lock<std::mutex>& lock);
  void AddThread();

  std::shared_ptr<Log> log;
  std::mutex mutex;  // guards everything below
  std::condition_variable work;
  std::condition_variable finished_changed;
  std::deque<std::pair<Task, std::size_t>> tasks;  // and the bytes of the message in each
  std::size_t message_bytes = 0;
  std::vector<std::thread> threads;
  std::set<std::thread::id> finished;
  std::thread::id leader;  // none: nobody leads
  Clock::time_point task_began;
  bool is_watched = false;  // an idle thread waits for the leader's patience to run out
  std::size_t idle = 0;
  bool stopping = false;
};

void Dispatcher::Core::AddThread() {
  threads.emplace_back([self = shared_from_this()] { self->Run(); });
}

void Dispatcher::Core::Run() {
  std::unique_lock<std::mutex> lock(mutex);
  while (WaitForLead(lock)) Lead(lock);
  finished.insert(std::this_thread::get_id());
  finished_changed.notify_all();
}

// False when it is time to end.
bool Dispatcher::Core::WaitForLead(std::unique_lock<std::mutex>& lock) {
  ++idle;
  while (!stopping) {
    const bool has_leader = leader != std::thread::id{};
    if (!tasks.empty() && (!has_leader || Clock::now() >= task_began + kPatience)) break;
    if (tasks.empty() || is_watched) {
      work.wait(lock);
    } else {
      is_watched = true;
      work.wait_until(lock, task_began + kPatience);
      is_watched = false;
    }
  }
  --idle;
  return !stopping;
}

void Dispatcher::Core::Lead(std::unique_lock<std::mutex>& lock) {
  leader = std::this_thread::get_id();
  if (idle == 0 && threads.size() < kMaxThreads) AddThread();
  while (leader == std::this_thread::get_id() && !tasks.empty() && !stopping) {
    Task task = std::move(tasks.front().first);
    message_bytes -= tasks.front().second;
    tasks.pop_front();
    task_began = Clock::now();
    if (!tasks.empty() && !is_watched) work.notify_one();
    lock.unlock();
    try {
      task();
    } catch (const std::exception& error) {
      log->Error("a handler threw an exception: ", error.what());
    } catch (...) {
      log->Error("a handler threw something that is no exception");
    }
    task = nullptr;  // what it holds may call back, so not under the lock
    lock.lock();
  }
  if (leader == std::this_thread::get_id()) {
    leader = {};
    if (!tasks.empty()) work.notify_one();
  }
}

Dispatcher::Dispatcher(std::shared_ptr<Log> log) : log_(std::move(log)), core_(std::make_shared<Core>(log_)) {}

Dispatcher::~Dispatcher() { Stop(kPatience); }

void Dispatcher::Start() {
  const std::lock_guard<std::mutex> guard(mutex_);
  const std::lock_guard<std::mutex> lock(core_->mutex);
  if (core_->threads.empty()) core_->AddThread();
}

bool Dispatcher::Push(Task task, std::size_t message_bytes) {
  std::shared_ptr<Core> core;
  {
    const std::lock_guard<std::mutex> guard(mutex_);
    core = core_;
  }
  const std::lock_guard<std::mutex> lock(core->mutex);
  if (core->tasks.size() >= (message_bytes > 0 ? kMaxMessages : kMaxTasks)) return false;
  if (message_bytes > kMaxMessageBytes - core->message_bytes) return false;
  core->message_bytes += message_bytes;
  core->tasks.emplace_back(std::move(task), message_bytes);
  // While a handler runs, only a thread that watches it is needed, and that one needs no further call.
  if (core->leader == std::thread::id{} || !core->is_watched) core->work.notify_one();
  return true;
}

void Dispatcher::Stop(std::chrono::milliseconds deadline) {
  std::shared_ptr<Core> core = std::make_shared<Core>(log_);
  {
    const std::lock_guard<std::mutex> guard(mutex_);
    core.swap(core_);
  }
  std::deque<std::pair<Task, std::size_t>> forgotten;  // destroyed without a lock
  std::vector<std::thread> threads;
  std::set<std::thread::id> finished;
  {
    std::unique_lock<std::mutex> lock(core->mutex);
    core->stopping = true;
    core->work.notify_all();
    forgotten.swap(core->tasks);
    const auto all_ended = [&core] {
      for (const std::thread& thread : core->threads) {
        if (thread.get_id() != std::this_thread::get_id() && core->finished.count(thread.get_id()) == 0) return false;
      }
      return true;
    };
    if (!core->finished_changed.wait_for(lock, deadline, all_ended)) {
      log_->Error("a handler did not return in time for stop(); it is left running");
    }
    threads.swap(core->threads);
    finished = core->finished;
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
