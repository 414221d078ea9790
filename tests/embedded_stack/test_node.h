#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <vsomeip/vsomeip.hpp>

namespace embedded_stack_test {

using Bytes = std::vector<vsomeip::byte_t>;
using namespace std::chrono_literals;

inline constexpr vsomeip::service_t kService = 0x4711;
// Of this process's own, so that tests that run at the same time do not meet.
inline const auto kInstance = static_cast<vsomeip::instance_t>(1 + 2 * (getpid() % 0x7FF0));
inline const auto kSecondInstance = static_cast<vsomeip::instance_t>(kInstance + 1);
inline constexpr vsomeip::major_version_t kMajor = 3;
inline constexpr vsomeip::minor_version_t kMinor = 7;
inline constexpr vsomeip::method_t kGet = 0x0010;      // answers with the field's value
inline constexpr vsomeip::method_t kSet = 0x0011;      // takes and notifies a new value, answers with nothing
inline constexpr vsomeip::method_t kReverse = 0x0012;  // answers with the request's bytes in reverse order
inline constexpr vsomeip::event_t kField = 0x8010;
inline constexpr vsomeip::eventgroup_t kGroup = 0x0021;

inline std::shared_ptr<vsomeip::payload> MakePayload(const Bytes& bytes) {
  return vsomeip::runtime::get()->create_payload(bytes);
}

inline Bytes BytesOf(const vsomeip::message& message) {
  const auto payload = message.get_payload();
  const vsomeip::byte_t* const data = std::as_const(*payload).get_data();
  return {data, data + payload->get_length()};
}

// What handlers saw, in order, for a test thread that waits for it.
template <typename Item>
class Record {
 public:
  void Add(Item item) {
    const std::lock_guard<std::mutex> lock(mutex_);
    items_.push_back(std::move(item));
    changed_.notify_all();
  }
  // True as soon as `condition` holds for all items so far.
  bool WaitFor(const std::function<bool(const std::vector<Item>&)>& condition, std::chrono::milliseconds limit = 10s) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return condition(items_); });
  }
  bool WaitForLast(const Item& last, std::chrono::milliseconds limit = 10s) {
    return WaitFor([&](const auto& items) { return !items.empty() && items.back() == last; }, limit);
  }
  bool WaitForCount(std::size_t count, std::chrono::milliseconds limit = 10s) {
    return WaitFor([&](const auto& items) { return items.size() >= count; }, limit);
  }
  std::vector<Item> Items() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return items_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Item> items_;
};

// An application that runs for as long as the object lives.
class Node {
 public:
  explicit Node(const std::string& name) : app_(vsomeip::runtime::get()->create_application(name)) {
    if (!app_->init()) throw std::runtime_error("init() failed");
  }
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  ~Node() { Stop(); }

  // Called first by the destructors of those who have members that handlers use.
  void Stop() {
    app_->stop();
    if (thread_.joinable()) thread_.join();
  }

  void Start() {
    thread_ = std::thread([this] { app_->start(); });
  }
  vsomeip::application* operator->() { return app_.get(); }

 private:
  std::shared_ptr<vsomeip::application> app_;
  std::thread thread_;
};

// Offers the service with one field.
class Provider : public Node {
 public:
  explicit Provider(const Bytes& value, vsomeip::instance_t instance = kInstance)
      : Node("provider"), instance_(instance) {
    Offer(instance, value);
    Start();
  }
  ~Provider() { Stop(); }

  void Offer(vsomeip::instance_t instance, const Bytes& initial) {
    Node& app = *this;
    const auto value = std::make_shared<Bytes>(initial);
    Answer(instance, kGet, [value](const Bytes&) { return *value; });
    Answer(instance, kSet, [&app, instance, value](const Bytes& next) {
      *value = next;
      app->notify(kService, instance, kField, MakePayload(next));
      return Bytes();
    });
    Answer(instance, kReverse, [](const Bytes& bytes) { return Bytes(bytes.rbegin(), bytes.rend()); });
    app->offer_event(kService, instance, kField, {kGroup}, vsomeip::event_type_e::ET_FIELD);
    app->offer_service(kService, instance, kMajor, kMinor);
    app->notify(kService, instance, kField, MakePayload(initial));
  }
  void Notify(const Bytes& value) { (*this)->notify(kService, instance_, kField, MakePayload(value)); }

 private:
  // Answers calls of `method` with what `handler` makes of their bytes.
  void Answer(vsomeip::instance_t instance, vsomeip::method_t method,
              const std::function<Bytes(const Bytes&)>& handler) {
    (*this)->register_message_handler(kService, instance, method,
                                      [this, handler](const std::shared_ptr<vsomeip::message>& request) {
                                        const auto response = vsomeip::runtime::get()->create_response(request);
                                        response->set_payload(MakePayload(handler(BytesOf(*request))));
                                        (*this)->send(response);
                                      });
  }
  const vsomeip::instance_t instance_;
};

// Uses one instance of the service, and records everything that it hears.
class Client : public Node {
 public:
  explicit Client(vsomeip::instance_t instance = kInstance) : Node("client"), instance_(instance) {
    Node& app = *this;
    app->register_availability_handler(kService, instance, [this](auto, auto, bool is) { availability.Add(is); });
    app->register_message_handler(kService, instance, vsomeip::ANY_METHOD,
                                  [this](const std::shared_ptr<vsomeip::message>& message) { OnMessage(*message); });
    app->register_subscription_status_handler(
        kService, instance, kGroup, kField, [this](auto, auto, auto, auto, std::uint16_t code) { status.Add(code); },
        true);
    app->request_service(kService, instance, kMajor);
    app->request_event(kService, instance, kField, {kGroup}, vsomeip::event_type_e::ET_FIELD);
    Start();
  }
  ~Client() { Stop(); }

  void Subscribe() { (*this)->subscribe(kService, instance_, kGroup, kMajor, kField); }

  vsomeip::request_t Send(vsomeip::method_t method, const Bytes& bytes = {},
                          vsomeip::major_version_t version = kMajor) {
    const auto request = vsomeip::runtime::get()->create_request();
    request->set_service(kService);
    request->set_instance(instance_);
    request->set_method(method);
    request->set_interface_version(version);
    request->set_payload(MakePayload(bytes));
    (*this)->send(request);
    return request->get_request();
  }

  struct Reply {
    vsomeip::request_t request;
    vsomeip::return_code_e code;
    Bytes bytes;
  };
  // The reply to one call, however large; an empty one with E_TIMEOUT if there was none in time.
  Reply Call(vsomeip::method_t method, const Bytes& bytes = {}, vsomeip::major_version_t version = kMajor) {
    Reply reply{Send(method, bytes, version), vsomeip::return_code_e::E_TIMEOUT, {}};
    const auto is_answer = [&](const Reply& candidate) { return candidate.request == reply.request; };
    const auto take = [&](const std::vector<Reply>& all) {
      const auto found = std::find_if(all.begin(), all.end(), is_answer);
      if (found == all.end()) return false;
      reply = *found;
      return true;
    };
    replies.WaitFor(take, 60s);
    return reply;
  }

  Record<bool> availability;
  Record<std::uint16_t> status;
  Record<Bytes> values;
  Record<Reply> replies;

 private:
  void OnMessage(const vsomeip::message& message) {
    if (message.get_message_type() == vsomeip::message_type_e::MT_NOTIFICATION) {
      values.Add(BytesOf(message));
    } else {
      replies.Add({message.get_request(), message.get_return_code(), BytesOf(message)});
    }
  }
  const vsomeip::instance_t instance_;
};

}  // namespace embedded_stack_test
