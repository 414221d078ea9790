#include "platform/include/connection.h"

#include <map>
#include <mutex>
#include <utility>

#include "platform/vsomeipbinding/stack_thread.h"

namespace ara::com::internal::vsomeip::runtime {

namespace {

/// How often each service instance is requested.
struct Requests {
  // Guards counts. Held while the stack is told, so that it hears of requests and releases in their order; the stack
  // never calls back from within.
  std::mutex mutex;
  std::map<std::pair<std::uint16_t, std::uint16_t>, std::size_t> counts;  // by service and instance

  /// Never destroyed: static proxies are destroyed at any time.
  static Requests& Get() {
    static Requests& requests = *new Requests;
    return requests;
  }
};

}  // namespace

VSomeIPConnection VSomeIPConnection::instance_;

void VSomeIPConnection::DoRequestService(const common::ServiceInstance& service) {
  const auto application = StackThread::Get().Start();
  Requests& requests = Requests::Get();
  const std::lock_guard<std::mutex> lock(requests.mutex);
  std::size_t& count = requests.counts[{service.service, service.instance}];
  if (count == 0) {
    // Any minor version: which of them will do is the registry entry's to say, and the search for services heeds it.
    application->request_service(service.service, service.instance, service.major, ::vsomeip::ANY_MINOR);
  }
  ++count;
}

void VSomeIPConnection::DoReleaseService(const common::ServiceInstance& service) {
  Requests& requests = Requests::Get();
  const std::lock_guard<std::mutex> lock(requests.mutex);
  const auto found = requests.counts.find({service.service, service.instance});
  if (found == requests.counts.end() || --found->second != 0) {
    return;
  }
  requests.counts.erase(found);
  if (const auto application = StackThread::Get().Running()) {
    application->release_service(service.service, service.instance);
  }
}

}  // namespace ara::com::internal::vsomeip::runtime
