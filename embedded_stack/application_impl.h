#pragma once

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "embedded_stack/configuration.h"
#include "embedded_stack/discovery/offers.h"
#include "embedded_stack/discovery/peer_table.h"
#include "embedded_stack/discovery/requests.h"
#include "embedded_stack/dispatcher.h"
#include "embedded_stack/events.h"
#include "embedded_stack/handlers.h"
#include "embedded_stack/message_impl.h"
#include "embedded_stack/net/reassembler.h"
#include "embedded_stack/net/send_queue.h"
#include "embedded_stack/net/sockets.h"
#include "vsomeip/application.hpp"

namespace vsomeip_v3::embedded {

// A node: joins the tables, which know no threads, with the sockets, the clock and the dispatcher.
//
// One lock guards all tables. It is never held while a handler or any other function of the user runs. The dispatcher's
// threads do the network's input, the thread in start() what time brings: discovery and paced output. Other output
// happens in the thread that asks for it.
class ApplicationImpl final : public application, public std::enable_shared_from_this<ApplicationImpl> {
 public:
  ApplicationImpl(std::string name, std::string configuration_file);
  ~ApplicationImpl() override;

  const std::string& get_name() const override { return name_; }
  client_t get_client() const override;
  bool init() override;
  void start() override;
  void stop() override;
  bool is_routing() const override { return true; }

  void offer_service(service_t service, instance_t instance, major_version_t major, minor_version_t minor) override;
  void stop_offer_service(service_t service, instance_t instance, major_version_t major,
                          minor_version_t minor) override;
  void offer_event(service_t service, instance_t instance, event_t notifier, const std::set<eventgroup_t>& eventgroups,
                   event_type_e type, std::chrono::milliseconds cycle, bool change_resets_cycle, bool update_on_change,
                   const epsilon_change_func_t& epsilon_change_func, reliability_type_e reliability) override;
  void stop_offer_event(service_t service, instance_t instance, event_t event) override;
  void notify(service_t service, instance_t instance, event_t event, std::shared_ptr<payload> payload,
              bool force) const override;

  void request_service(service_t service, instance_t instance, major_version_t major, minor_version_t minor) override;
  void release_service(service_t service, instance_t instance) override;
  void request_event(service_t service, instance_t instance, event_t event, const std::set<eventgroup_t>& eventgroups,
                     event_type_e type, reliability_type_e reliability) override;
  void release_event(service_t service, instance_t instance, event_t event) override;
  void subscribe(service_t service, instance_t instance, eventgroup_t eventgroup, major_version_t major,
                 event_t event) override;
  void unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup) override;
  void unsubscribe(service_t service, instance_t instance, eventgroup_t eventgroup, event_t event) override;
  bool is_available(service_t service, instance_t instance, major_version_t major,
                    minor_version_t minor) const override;
  void send(std::shared_ptr<message> message) override;

  void get_offered_services_async(offer_type_e type, const offered_services_handler_t& handler) override;
  void register_state_handler(const state_handler_t& handler) override;
  void unregister_state_handler() override;
  void register_message_handler(service_t service, instance_t instance, method_t method,
                                const message_handler_t& handler) override;
  void unregister_message_handler(service_t service, instance_t instance, method_t method) override;
  void register_availability_handler(service_t service, instance_t instance, const availability_handler_t& handler,
                                     major_version_t major, minor_version_t minor) override;
  void unregister_availability_handler(service_t service, instance_t instance, major_version_t major,
                                       minor_version_t minor) override;
  void register_subscription_status_handler(service_t service, instance_t instance, eventgroup_t eventgroup,
                                            event_t event, subscription_status_handler_t handler,
                                            bool is_selective) override;
  void unregister_subscription_status_handler(service_t service, instance_t instance, eventgroup_t eventgroup,
                                              event_t event) override;
  void clear_all_handler() override;

 private:
  using Lock = std::unique_lock<std::mutex>;
  enum class State { kNew, kReady, kRunning, kStopping };

  // application_impl.cpp: life and calls. Everything below expects the lock to be held, if nothing else is said.
  void Serve(Lock& lock);  // returns after stop()
  void CreateTables(const Configuration& configuration);
  void StopTables(DiscoveryOutput& out);
  std::size_t ChooseSocket(const ServiceInstance& key);
  void SendRequest(const std::shared_ptr<message>& message);
  void SendResponse(const std::shared_ptr<message>& message);
  static void RequireTransferable(const payload& payload);
  session_t NextSession();

  // application_notify.cpp: values of what is offered here.
  void Notify(const ServiceInstance& key, event_t event, std::shared_ptr<payload> payload,
              bool force);  // takes the lock
  void SendNotification(const ServiceInstance& key, event_t event, const std::set<Endpoint>& targets);

  // application_network.cpp: what comes from the network, and what goes there.
  void OnReadable();  // takes the lock
  // Returns how many messages were in it. A datagram for which there is no memory is lost, as datagrams are.
  std::size_t OnDatagram(Sockets::Channel channel, std::size_t socket, const Endpoint& from,
                         ByteView datagram) noexcept;
  void OnDiscovery(bool multicast, const Endpoint& from, ByteView datagram);
  void WarnOfRival(const DiscoveryEntry& offer, std::uint32_t from);
  void OnDiscoveryEntry(DiscoveryEntry entry, std::uint32_t from, bool multicast, DiscoveryOutput& out);
  bool IsInNetwork(std::uint32_t address) const;
  std::size_t OnData(std::size_t socket, const Endpoint& from, ByteView datagram);
  void OnMessage(std::size_t socket, const Endpoint& from, const MessageHeader& header, ByteView payload);
  void OnSegment(const Origin& origin, const MessageHeader& header, instance_t instance, ByteView bytes);
  const instance_t* Admit(const Origin& origin, const MessageHeader& header);
  const instance_t* AdmitRequest(const Origin& origin, const MessageHeader& header);
  void Deliver(const Origin& origin, const MessageHeader& header, instance_t instance,
               std::vector<std::uint8_t> payload);
  void SendError(const Origin& origin, const MessageHeader& request, return_code_e code);
  // `keep` is asked for the payload's bytes if they cannot go out at once. False if the message was dropped.
  bool Transmit(const SendQueue::Target& target, const MessageHeader& header, ByteView payload,
                const std::function<SharedBytes()>& keep);
  void Flush(TimePoint now);

  void Apply(const DiscoveryOutput& out);
  void SendEntries(const std::vector<DiscoveryOutput::Outgoing>& entries);
  void TellAvailability(const DiscoveryOutput::Availability& change);
  void TellAvailabilityAgain();
  void TellStatus(const DiscoveryOutput::SubscriptionStatus& status);
  void SendInitialValues(const DiscoveryOutput::NewSubscriber& subscriber);
  bool PushStatus(const ServiceInstance& key, eventgroup_t eventgroup, event_t event, bool accepted);
  void PushMessage(std::shared_ptr<message> message, std::uint32_t requester = 0);
  // False if it was dropped.
  bool Push(std::function<void()> function) { return PushTask({nullptr, nullptr, std::move(function)}); }
  bool PushTask(Dispatcher::Task task);

  void Wake();       // makes the thread in start() look at the tables
  TimePoint Tick();  // returns when it has to look again

  std::string name_;
  const std::string configuration_file_;
  const std::shared_ptr<Log> log_;

  mutable std::mutex mutex_;                // guards everything below
  std::shared_ptr<Dispatcher> dispatcher_;  // another one after each stop()
  std::condition_variable left_start_;
  std::condition_variable woken_;
  bool is_woken_ = false;
  State state_ = State::kNew;
  bool stop_requested_ = false;  // before start()
  client_t client_ = 0;
  session_t session_ = 0;
  std::map<ServiceInstance, port_t> configured_ports_;
  DropCounter drops_;
  Handlers handlers_;
  OfferedEvents offered_events_;
  UsedEvents used_events_;
  std::unique_ptr<Offers> offers_;      // from init() on
  std::unique_ptr<Requests> requests_;  // likewise
  std::unique_ptr<PeerTable> peers_;    // likewise
  port_t discovery_port_ = 0;
  std::uint32_t netmask_ = 0;
  bool may_send_error_ = true;           // for the datagram at hand
  bool is_availability_untold_ = false;  // to some handler, because the queue was full
  Reassembler reassembler_;
  std::unique_ptr<SendQueue> queue_;
  TimePoint next_flush_ = kNever;  // when the thread in start() is going to look at the queue
  Sockets sockets_;
};

}  // namespace vsomeip_v3::embedded
