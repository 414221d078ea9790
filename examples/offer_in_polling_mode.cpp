// Offers a service whose code runs on one thread, the application's own, until Ctrl-C: offer_in_polling_mode [INSTANCE]
//
// Ask it from another shell: tarn7 get routebasedenergycontents/rangeOnRouteValues

#include <chrono>
#include <deque>
#include <iostream>
#include <mutex>

#include "examples/ctrl_c.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_skeleton.h"

using namespace kro::services::routebasedenergycontents::datatypes;
using kro::services::routebasedenergycontents::skeleton::RouteBasedEnergyContentsSkeleton;

namespace {

/// The getter requests that wait for the application's next round.
template <typename Value>
class WaitingRequests {
 public:
  /// Called by the stack for each request, on its thread, which waits for the future. So each must get its answer, and
  /// soon.
  ara::core::Future<Value> Add() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!is_open_) {
      return ara::core::Promise<Value>().get_future();  // its promise is gone: an error response
    }
    return requests_.emplace_back().get_future();
  }

  /// Called by the application before the offer ends, which waits for the requests that wait here.
  void Close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_open_ = false;
    requests_.clear();
  }

  /// Called by the application. Each answer goes out from the thread that waits for it.
  void AnswerAll(const Value& value) {
    std::deque<ara::core::Promise<Value>> requests;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      requests.swap(requests_);
    }
    for (auto& request : requests) {
      request.SetResult(Value(value));
    }
  }

 private:
  std::mutex mutex_;  // guards the members below
  std::deque<ara::core::Promise<Value>> requests_;
  bool is_open_ = true;
};

}  // namespace

int main(int argc, char** argv) {
  const example::CtrlC ctrlC;
  WaitingRequests<std::vector<DT_rangeOnRouteValues_struct>> requests;  // outlives the skeleton, which calls it
  RouteBasedEnergyContentsSkeleton route({argc > 1 ? argv[1] : "1"});

  // Method calls wait in this mode until they are asked for, in the loop below. Getters do not: their handlers are
  // called at once. A handler that answers later, from the loop, gives them the same form.
  route.SetMethodCallProcessingMode(ara::com::MethodCallProcessingMode::kPoll);
  route.rangeOnRouteValues.RegisterGetHandler([&requests] { return requests.Add(); });
  route.rangeOnRouteValues.Update({});
  route.routeBasedResidualEnergyValues.Update({});
  route.destinations.Update({});
  route.rwmStatus.Update({});
  route.targetSocChargings.Update({});
  route.OfferService();
  std::cout << "offered" << std::endl;

  for (std::uint32_t round = 1; !ctrlC.PressedWithin(std::chrono::milliseconds(20)); ++round) {
    while (route.ProcessNextMethodCall().get()) {  // one call that waits, on this thread; false: none is left
    }
    requests.AnswerAll({DT_rangeOnRouteValues_struct{round, 300}});
  }
  requests.Close();
}
