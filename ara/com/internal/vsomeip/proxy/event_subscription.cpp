#include "ara/com/internal/vsomeip/proxy/event_subscription.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <tuple>
#include <utility>

#include "ara/com/internal/vsomeip/common/log_limit.h"
#include "ara/com/internal/vsomeip/common/logger.h"
#include "ara/com/internal/vsomeip/common/shared_vector.h"
#include "platform/include/connection.h"
#include "platform/include/message_check.h"
#include "platform/include/service_availability.h"

namespace ara::com::internal::vsomeip::proxy {

namespace {

constexpr const char* kSource = "proxy/event_subscription";

template <typename... Arguments>
std::shared_ptr<const std::function<void(Arguments...)>> Share(std::function<void(Arguments...)> handler) {
  return handler ? std::make_shared<const std::function<void(Arguments...)>>(std::move(handler)) : nullptr;
}

}  // namespace

/// What the process has one of for each event of a service instance: the subscription at the stack, and the lock.
class EventSubscription::SharedEvent : public std::enable_shared_from_this<SharedEvent> {
 public:
  static std::shared_ptr<SharedEvent> Of(const EventIdentity& identity);
  explicit SharedEvent(const EventIdentity& identity) : identity_(identity) {}
  ~SharedEvent();
  SharedEvent(const SharedEvent&) = delete;
  SharedEvent& operator=(const SharedEvent&) = delete;

  const EventIdentity& Identity() const noexcept { return identity_; }

  void Add(const std::shared_ptr<EventSubscription>& member);
  void Remove(const EventSubscription& member);

  /// Subscribes at the stack, for a member that has joined, unless it has left again.
  void SubscribeFor(const EventSubscription& member, bool isField);
  /// Unsubscribes at the stack when no member is left that has joined.
  void UnsubscribeIfUnused();

  bool validateMessage(const ::vsomeip::message& message);

  /// Guards everything in the members, and what is marked so below. Never held across a call into the application
  /// or on the stack.
  std::mutex mutex;
  std::condition_variable handlers_ended;
  Message latest;          // guarded by mutex; null while there is none, or the provider is away or has refused
  std::size_t joined = 0;  // guarded by mutex; members that have joined

 private:
  using Key = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;  // service, instance, event
  struct Directory;

  static Key KeyOf(const EventIdentity& event) { return {event.service, event.instance, event.event}; }

  void TellSubscription(std::uint64_t round, bool isField);
  void TellEnd();
  void OnMessage(std::uint64_t round, const Message& message);
  void OnStatus(std::uint64_t round, std::uint16_t status);
  void OnAvailability(std::uint64_t round, bool available);

  const EventIdentity identity_;
  common::LogLimit client_id_limit_;
  common::LogLimit discard_limit_;

  std::mutex stack_mutex_;  // serialises what the stack is told, and guards the next two; taken before mutex
  bool is_subscribed_at_stack_ = false;
  std::optional<std::uint64_t> availability_token_;

  common::SharedVector<std::shared_ptr<EventSubscription>> members_;  // guarded by mutex
  // Guarded by mutex. Counts the subscriptions at the stack that have ended: what it had queued for one of them is not
  // taken for the present one's.
  std::uint64_t round_ = 0;
};

/// The events that are in use.
struct EventSubscription::SharedEvent::Directory {
  std::mutex mutex;  // guards events; never held across any call
  std::map<Key, std::weak_ptr<SharedEvent>> events;

  /// Never destroyed: a proxy with static lifetime may go after everything else.
  static Directory& Get() {
    static auto* const directory = new Directory;
    return *directory;
  }
};

std::shared_ptr<EventSubscription::SharedEvent> EventSubscription::SharedEvent::Of(const EventIdentity& identity) {
  Directory& directory = Directory::Get();
  const std::lock_guard<std::mutex> lock(directory.mutex);
  auto& entry = directory.events[KeyOf(identity)];
  auto event = entry.lock();
  if (event == nullptr) {
    // One that has just gone has unsubscribed at the stack before: each member does so before it lets go.
    event = std::make_shared<SharedEvent>(identity);
    entry = event;
  }
  return event;
}

EventSubscription::SharedEvent::~SharedEvent() {
  Directory& directory = Directory::Get();
  const std::lock_guard<std::mutex> lock(directory.mutex);
  const auto found = directory.events.find(KeyOf(identity_));
  // Another one may have taken the place since this one's last owner let go, and may be gone as well.
  if (found != directory.events.end() && found->second.expired()) {
    directory.events.erase(found);
  }
}

void EventSubscription::SharedEvent::Add(const std::shared_ptr<EventSubscription>& member) {
  const std::lock_guard<std::mutex> lock(mutex);
  members_.Change().push_back(member);
}

void EventSubscription::SharedEvent::Remove(const EventSubscription& member) {
  const std::lock_guard<std::mutex> lock(mutex);
  auto& members = members_.Change();
  members.erase(
      std::remove_if(members.begin(), members.end(), [&](const auto& other) { return other.get() == &member; }),
      members.end());
}

void EventSubscription::SharedEvent::SubscribeFor(const EventSubscription& member, bool isField) {
  const std::lock_guard<std::mutex> telling(stack_mutex_);
  std::uint64_t round = 0;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!member.joined_) {
      return;
    }
    round = round_;
  }
  TellSubscription(round, isField);
}

void EventSubscription::SharedEvent::TellSubscription(std::uint64_t round, bool isField) {
  const auto& application = runtime::VSomeIPConnection::instance_.Application();
  const auto weak = weak_from_this();
  const auto onMessage = [weak, round](const Message& message) {
    if (const auto self = weak.lock()) {
      self->OnMessage(round, message);
    }
  };
  is_subscribed_at_stack_ = true;  // its end is due from here on, come what may
  const auto type = isField ? ::vsomeip::event_type_e::ET_FIELD : ::vsomeip::event_type_e::ET_EVENT;
  // The stack looks for the handler when a notification arrives, and the first one, the field's value as it stands, may
  // be here before subscribe() has returned. So the handler must be there already; where its registration belongs,
  // after the subscription, it is repeated, which changes nothing.
  application->register_message_handler(identity_.service, identity_.instance, identity_.event, onMessage);
  application->request_event(identity_.service, identity_.instance, identity_.event, identity_.eventgroups, type);
  constexpr bool kRejectionsToo = true;
  application->register_subscription_status_handler(
      identity_.service, identity_.instance, identity_.eventgroup, identity_.event,
      [weak, round](auto, auto, auto, auto, std::uint16_t status) {
        if (const auto self = weak.lock()) {
          self->OnStatus(round, status);
        }
      },
      kRejectionsToo);
  application->subscribe(identity_.service, identity_.instance, identity_.eventgroup, identity_.major, identity_.event);
  application->register_message_handler(identity_.service, identity_.instance, identity_.event, onMessage);
  if (!availability_token_ && common::registerAvailabilityHandler != nullptr) {
    availability_token_ = common::registerAvailabilityHandler(
        {identity_.service, identity_.instance, identity_.major, identity_.minor}, [weak, round](bool available) {
          if (const auto self = weak.lock()) {
            self->OnAvailability(round, available);
          }
        });
  }
}

void EventSubscription::SharedEvent::UnsubscribeIfUnused() {
  const std::lock_guard<std::mutex> telling(stack_mutex_);
  {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!is_subscribed_at_stack_ || joined != 0) {
      return;
    }
    ++round_;
    latest = nullptr;
  }
  is_subscribed_at_stack_ = false;
  TellEnd();
}

// What fails is logged, and the rest is told all the same: nothing may stay registered.
void EventSubscription::SharedEvent::TellEnd() {
  const auto tell = [](const auto& what) {
    try {
      what();
    } catch (const std::exception& error) {
      common::LogWarning(kSource, "TellEnd", __LINE__) << "The stack fails to end a subscription: " << error.what();
    } catch (...) {
      common::LogWarning(kSource, "TellEnd", __LINE__) << "The stack fails to end a subscription";
    }
  };
  if (const auto token = std::exchange(availability_token_, std::nullopt)) {
    tell([&] { common::unregisterAvailabilityHandler(*token); });
  }
  const auto& application = runtime::VSomeIPConnection::instance_.Application();
  tell([&] {
    application->unregister_subscription_status_handler(identity_.service, identity_.instance, identity_.eventgroup,
                                                        identity_.event);
  });
  tell([&] { application->unsubscribe(identity_.service, identity_.instance, identity_.eventgroup); });
  tell([&] { application->release_event(identity_.service, identity_.instance, identity_.event); });
  tell([&] { application->unregister_message_handler(identity_.service, identity_.instance, identity_.event); });
}

bool EventSubscription::SharedEvent::validateMessage(const ::vsomeip::message& message) {
  const bool valid = common::checkMessageMetaData(message, identity_.service, identity_.event, identity_.major,
                                                  ::vsomeip::message_type_e::MT_NOTIFICATION,
                                                  ::vsomeip::message_type_e::MT_UNKNOWN, false, false);
  if (message.get_client() != 0) {
    common::LogWarningWithin(client_id_limit_, kSource, "validateMessage", __LINE__, "Incorrect client id: '",
                             message.get_client(), "', should be ", 0);
    return false;
  }
  return valid;
}

void EventSubscription::SharedEvent::OnMessage(std::uint64_t round, const Message& message) {
  if (!validateMessage(*message)) {
    common::LogWarningWithin(discard_limit_, kSource, "onMessage", __LINE__, "Discarding invalid message");
    return;
  }
  std::unique_lock<std::mutex> lock(mutex);
  if (round != round_) {
    return;
  }
  latest = message;
  const auto members = members_.Share();  // as they are now; keeps them alive
  for (const auto& member : *members) {
    if (member->joined_) {
      member->messages_.push_back(message);
      member->DropSurplusMessages();
      member->is_value_unannounced_ = false;
      // One call for each message that waits: not for those that went unread while the handler was busy.
      if (member->receive_calls_.CountDue() < member->messages_.size()) {
        member->receive_calls_.Add();
      }
    }
  }
  for (const auto& member : *members) {
    member->receive_calls_.Make(lock, handlers_ended);
  }
}

void EventSubscription::SharedEvent::OnStatus(std::uint64_t round, std::uint16_t status) {
  std::unique_lock<std::mutex> lock(mutex);
  if (round != round_) {
    return;
  }
  const bool isAccepted = status == 0;
  if (!isAccepted) {
    latest = nullptr;
  }
  const auto members = members_.Share();
  for (const auto& member : *members) {
    if (member->joined_) {
      member->setSubscriptionState(isAccepted ? SubscriptionState::kSubscribed : SubscriptionState::kNotSubscribed);
      if (isAccepted && std::exchange(member->is_value_unannounced_, false)) {
        member->receive_calls_.Add();
      }
    }
  }
  for (const auto& member : *members) {
    member->state_change_calls_.Make(lock, handlers_ended);
    member->receive_calls_.Make(lock, handlers_ended);
  }
}

void EventSubscription::SharedEvent::OnAvailability(std::uint64_t round, bool available) {
  std::unique_lock<std::mutex> lock(mutex);
  if (available || round != round_) {
    return;  // the stack subscribes by itself when the provider returns, and then tells the status
  }
  latest = nullptr;
  const auto members = members_.Share();
  for (const auto& member : *members) {
    if (member->joined_ && member->state_ != SubscriptionState::kSubscriptionPending) {
      member->setSubscriptionState(SubscriptionState::kSubscriptionPending);
    }
  }
  for (const auto& member : *members) {
    member->state_change_calls_.Make(lock, handlers_ended);
  }
}

std::shared_ptr<EventSubscription> EventSubscription::Open(const EventIdentity& event) {
  std::shared_ptr<EventSubscription> subscription(new EventSubscription(SharedEvent::Of(event)));
  subscription->event_->Add(subscription);
  return subscription;
}

void EventSubscription::Close() {
  StopHandlers();
  Unsubscribe();
  event_->Remove(*this);
}

void EventSubscription::Subscribe(std::size_t cacheSize, std::shared_ptr<internal::proxy::SampleSlots> slots,
                                  bool isField) {
  const auto self = shared_from_this();  // the state handler may destroy the event object
  {
    std::unique_lock<std::mutex> lock(event_->mutex);
    cache_size_ = cacheSize;
    slots_.swap(slots);
    DropSurplusMessages();
    if (!std::exchange(joined_, true)) {
      ++event_->joined;
      if (event_->latest != nullptr) {
        // The stack has sent the field's value when another proxy subscribed, and does not send it again.
        messages_.push_back(event_->latest);
        is_value_unannounced_ = true;
      }
    }
    setSubscriptionState(SubscriptionState::kSubscriptionPending);
    state_change_calls_.Make(lock, event_->handlers_ended);
  }
  try {
    event_->SubscribeFor(*this, isField);
  } catch (...) {
    Leave();
    throw;
  }
}

void EventSubscription::Unsubscribe() {
  const auto self = shared_from_this();  // the state handler may destroy the event object
  SetReceiveHandler(nullptr);
  Leave();
}

void EventSubscription::Leave() {
  std::deque<Message> dropped;  // destroyed without the lock
  {
    const std::lock_guard<std::mutex> lock(event_->mutex);
    if (std::exchange(joined_, false)) {
      --event_->joined;
    }
    dropped.swap(messages_);  // now, so that nothing of another subscription goes, and nothing of this one stays
    is_value_unannounced_ = false;
  }
  event_->UnsubscribeIfUnused();
  std::unique_lock<std::mutex> lock(event_->mutex);
  if (joined_) {
    return;  // another thread has subscribed meanwhile
  }
  if (const auto count = std::exchange(dropped_messages_, 0); count > 0) {
    common::GetLogger().LogInfo().WithLocation(kSource, "Leave", __LINE__)
        << count << " notifications of event " << event_->Identity().event << " were dropped: the cache was full";
  }
  setSubscriptionState(SubscriptionState::kNotSubscribed);
  state_change_calls_.Make(lock, event_->handlers_ended);
}

void EventSubscription::StopHandlers() {
  // Destroyed without the lock: they may own anything.
  std::shared_ptr<const HandlerCalls<>::Handler> receiveHandler;
  std::shared_ptr<const HandlerCalls<SubscriptionState>::Handler> stateChangeHandler;
  std::unique_lock<std::mutex> lock(event_->mutex);
  receive_calls_.Stop(receiveHandler);
  state_change_calls_.Stop(stateChangeHandler);
  event_->handlers_ended.wait(
      lock, [this] { return !receive_calls_.RunsOnAnotherThread() && !state_change_calls_.RunsOnAnotherThread(); });
}

void EventSubscription::SetReceiveHandler(std::function<void()> handler) {
  auto shared = Share(std::move(handler));
  const std::lock_guard<std::mutex> lock(event_->mutex);
  receive_calls_.Set(shared);
}

void EventSubscription::SetSubscriptionStateChangeHandler(std::function<void(SubscriptionState)> handler) {
  auto shared = Share(std::move(handler));
  const std::lock_guard<std::mutex> lock(event_->mutex);
  state_change_calls_.Set(shared);
}

SubscriptionState EventSubscription::GetSubscriptionState() const {
  const std::lock_guard<std::mutex> lock(event_->mutex);
  return state_;
}

std::size_t EventSubscription::GetFreeSampleCount() const {
  const std::lock_guard<std::mutex> lock(event_->mutex);
  return slots_ == nullptr ? 0 : slots_->GetFreeSampleCount();
}

e2exf::CheckResult EventSubscription::DoCheckResult() const {
  const std::lock_guard<std::mutex> lock(event_->mutex);
  return check_result_;
}

EventSubscription::Waiting EventSubscription::GetWaiting() {
  const std::lock_guard<std::mutex> lock(event_->mutex);
  if (messages_.empty()) {
    EnterCheck(e2exf::ProfileCheckStatus::kNoNewData);
  }
  return {messages_.size(), slots_};
}

EventSubscription::Taken EventSubscription::TakeMessage() {
  const std::lock_guard<std::mutex> lock(event_->mutex);
  if (messages_.empty()) {
    return {nullptr, e2exf::ProfileCheckStatus::kNotAvailable};
  }
  Taken taken{std::move(messages_.front()), e2exf::ProfileCheckStatus::kOk};
  messages_.pop_front();
  if (!taken.message->is_valid_crc()) {
    taken.status = e2exf::ProfileCheckStatus::kError;
  }
  EnterCheck(taken.status);
  return taken;
}

bool EventSubscription::validateMessage(const ::vsomeip::message& message) const {
  return event_->validateMessage(message);
}

// The newest data wins over unread old data.
void EventSubscription::DropSurplusMessages() {
  while (messages_.size() > cache_size_) {
    messages_.pop_front();
    ++dropped_messages_;
  }
}

void EventSubscription::setSubscriptionState(SubscriptionState state) {
  state_ = state;
  state_change_calls_.Add(state);
}

void EventSubscription::EnterCheck(e2exf::ProfileCheckStatus status) {
  const EventIdentity& event = event_->Identity();
  check_result_ = e2exf::StatusHandler::HandleCheckStatus(event.service, event.instance, event.event, status);
}

}  // namespace ara::com::internal::vsomeip::proxy
