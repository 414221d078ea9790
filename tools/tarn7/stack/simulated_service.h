#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <vsomeip/vsomeip.hpp>

#include "tools/tarn7/client/limited_report.h"
#include "tools/tarn7/model/interface.h"
#include "tools/tarn7/stack/stack_application.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// Offers an interface as a vehicle would: answers its getters and setters, and notifies new values. Requests are
/// handled on threads of the stack, the operations may be called from any thread.
///
/// A shared pointer, because a handler may be running when the application takes its handlers back.
class SimulatedService : public std::enable_shared_from_this<SimulatedService> {
 public:
  struct Counters {
    std::uint64_t gets = 0;
    std::uint64_t sets = 0;
    std::uint64_t notifications = 0;
  };

  /// Outlives neither `application` nor `interface`.
  SimulatedService(StackApplication& application, const Interface& interface, std::uint16_t instance);

  /// `values` holds the payload of each field, in the interface's order.
  void Offer(const std::vector<Payload>& values);
  void StopOffer();

  /// Gives a field, by its place in the interface, a new value, unless a client has set it: then that one stays.
  void Update(std::size_t field, const Payload& value);

  Counters GetCounters() const;

 private:
  using Message = std::shared_ptr<vsomeip::message>;

  void AnswerGetter(std::size_t field, const Message& request);
  void AnswerSetter(std::size_t field, const Message& request);
  /// Whether the request has the interface's version; if not, it is answered with an error.
  bool HasRightVersion(const Message& request) const;
  void Respond(const Message& request, const std::shared_ptr<vsomeip::payload>& payload) const;
  void RespondError(const Message& request, vsomeip::return_code_e code) const;
  void RegisterHandler(std::uint16_t method, std::size_t field,
                       void (SimulatedService::*answer)(std::size_t, const Message&));
  /// With the lock held, so that the last notification is what getters answer.
  void Notify(std::size_t field);

  struct State {
    std::shared_ptr<vsomeip::payload> payload;
    bool is_set = false;  // by a client
  };

  StackApplication& application_;
  const Interface& interface_;
  const std::uint16_t instance_;
  LimitedReport refused_;
  mutable LimitedReport too_large_;
  mutable std::mutex mutex_;  // guards the members below
  std::vector<State> fields_;
  Counters counters_;
};

}  // namespace tarn7::tool
