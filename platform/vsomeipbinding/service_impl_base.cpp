#include <map>
#include <mutex>
#include <utility>

#include "ara/com/internal/vsomeip/common/payload.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "platform/vsomeipbinding/rival_check.h"
#include "platform/vsomeipbinding/stack_thread.h"

namespace ara::com::internal::vsomeip::skeleton {

namespace {

/// The version that each service instance is offered in: the stack wants it again when an offer is withdrawn.
struct OfferedVersions {
  std::mutex mutex;  // guards versions
  std::map<std::pair<std::uint16_t, std::uint16_t>, std::pair<std::uint8_t, std::uint32_t>> versions;

  /// Never destroyed: static skeletons are destroyed at any time.
  static OfferedVersions& Get() {
    static OfferedVersions& offered = *new OfferedVersions;
    return offered;
  }
};

}  // namespace

void ServiceImplBase::OfferService(std::uint16_t service, std::uint16_t instance, std::uint8_t major,
                                   std::uint32_t minor) {
  const auto& application = runtime::VSomeIPConnection::instance_.Application();
  if (runtime::StackThread::Get().IsRegistered()) {
    runtime::RivalCheck::Get().Ask(*application, service, instance);
  }
  application->offer_service(service, instance, major, minor);
  OfferedVersions& offered = OfferedVersions::Get();
  const std::lock_guard<std::mutex> lock(offered.mutex);
  offered.versions[{service, instance}] = {major, minor};
}

void ServiceImplBase::StopOfferService(std::uint16_t service, std::uint16_t instance) {
  OfferedVersions& offered = OfferedVersions::Get();
  std::pair<std::uint8_t, std::uint32_t> version;
  {
    const std::lock_guard<std::mutex> lock(offered.mutex);
    const auto found = offered.versions.find({service, instance});
    if (found == offered.versions.end()) {
      return;
    }
    version = found->second;
    offered.versions.erase(found);
  }
  if (const auto application = runtime::StackThread::Get().Running()) {
    application->stop_offer_service(service, instance, version.first, version.second);
  }
}

void ServiceImplBase::StopOfferField(std::uint16_t service, std::uint16_t instance, std::uint16_t event) {
  if (const auto application = runtime::StackThread::Get().Running()) {
    application->stop_offer_event(service, instance, event);
  }
}

void ServiceImplBase::SendErrorReply(const ara::core::ErrorCode& error, std::shared_ptr<::vsomeip::message> request) {
  auto& connection = runtime::VSomeIPConnection::instance_;
  const auto stack = connection.MessageRuntime();
  const auto response = stack->create_response(request);
  response->set_message_type(::vsomeip::message_type_e::MT_ERROR);
  response->set_return_code(::vsomeip::return_code_e::E_NOT_OK);
  response->set_payload(common::MakePayload(common::ErrorPayload(error)));
  connection.Application()->send(response);
}

}  // namespace ara::com::internal::vsomeip::skeleton
