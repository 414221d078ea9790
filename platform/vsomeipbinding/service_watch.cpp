#include "platform/vsomeipbinding/service_watch.h"

#include <utility>
#include <vector>

#include "platform/include/transport_identifier.h"
#include "platform/vsomeipbinding/stack_thread.h"
#include "platform/vsomeipbinding/version_policy.h"

namespace ara::com::internal::vsomeip::runtime {

namespace {

constexpr std::chrono::milliseconds kDiscoveryTime{500};

/// No service instance has this id. Registering for it is answered at once ("not available"), on a thread of the stack.
constexpr ::vsomeip::instance_t kNoInstance = 0;

}  // namespace

ServiceWatch::ServiceWatch(const VSomeIPServiceMapping::Mapping& mapping)
    : mapping_(mapping),
      application_(StackThread::Get().Start()),
      answered_at_the_latest_(std::chrono::steady_clock::now() + kDiscoveryTime) {
  application_->register_availability_handler(
      mapping_.GetVSomeIPService(), ::vsomeip::ANY_INSTANCE,
      ::vsomeip::availability_handler_t([this](::vsomeip::service_t, ::vsomeip::instance_t instance, bool available) {
        OnAvailability(instance, available);
      }),
      mapping_.GetVSomeIPServiceVersionMajor(), ::vsomeip::ANY_MINOR);
  application_->request_service(mapping_.GetVSomeIPService(), ::vsomeip::ANY_INSTANCE,
                                mapping_.GetVSomeIPServiceVersionMajor(), ::vsomeip::ANY_MINOR);
}

InstanceIdentifierContainer ServiceWatch::Find(const InstanceIdentifier& wanted) {
  std::unique_lock<std::mutex> lock(mutex_);
  InstanceIdentifierContainer present;
  has_changed_.wait_until(lock, answered_at_the_latest_, [&] {
    present = PresentLocked(wanted);
    return !present.empty();
  });
  return present;
}

void ServiceWatch::AddSearch(std::uint64_t id, const InstanceIdentifier& wanted, ServiceSearch::Handler handler) {
  const auto search = std::make_shared<ServiceSearch>(wanted, std::move(handler));
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    searches_.emplace(id, search);
    newcomers_.push_back(search);
  }
  // Has the new search told of the present instances on a thread of the stack.
  application_->register_availability_handler(
      mapping_.GetVSomeIPService(), kNoInstance,
      ::vsomeip::availability_handler_t(
          [this](::vsomeip::service_t, ::vsomeip::instance_t, bool) { UpdateNewcomers(); }),
      mapping_.GetVSomeIPServiceVersionMajor(), ::vsomeip::ANY_MINOR);
}

std::shared_ptr<ServiceSearch> ServiceWatch::TakeSearch(std::uint64_t id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto node = searches_.extract(id);
  return node.empty() ? nullptr : node.mapped();
}

void ServiceWatch::OnAvailability(std::uint16_t instance, bool available) {
  if (instance == ::vsomeip::ANY_INSTANCE) {
    return;  // stacks may answer the registration for any instance with that; it says nothing
  }
  const bool fits = available && Fits(instance);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (fits) {
      instances_.insert(instance);
    } else {
      instances_.erase(instance);
    }
  }
  has_changed_.notify_all();
  UpdateSearches();
}

void ServiceWatch::UpdateSearches() {
  std::vector<std::shared_ptr<ServiceSearch>> searches;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [id, search] : searches_) {
      searches.push_back(search);
    }
  }
  Update(searches);
}

void ServiceWatch::UpdateNewcomers() {
  std::vector<std::shared_ptr<ServiceSearch>> newcomers;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    newcomers.swap(newcomers_);
  }
  Update(newcomers);
}

void ServiceWatch::Update(const std::vector<std::shared_ptr<ServiceSearch>>& searches) {
  for (const auto& search : searches) {
    search->Update([&] { return Present(search->Wanted()); });
  }
}

bool ServiceWatch::Fits(std::uint16_t instance) const {
  return FitsRequiredVersion(mapping_, [&](std::uint32_t minor) {
    return application_->is_available(mapping_.GetVSomeIPService(), instance, mapping_.GetVSomeIPServiceVersionMajor(),
                                      minor);
  });
}

InstanceIdentifierContainer ServiceWatch::Present(const InstanceIdentifier& wanted) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return PresentLocked(wanted);
}

InstanceIdentifierContainer ServiceWatch::PresentLocked(const InstanceIdentifier& wanted) const {
  InstanceIdentifierContainer present;
  if (wanted == InstanceIdentifier::Any()) {
    present.reserve(instances_.size());
    for (const std::uint16_t instance : instances_) {
      present.push_back(common::FromTransportIdentifier(instance));
    }
  } else if (const auto only = common::ToTransportIdentifier(wanted); only && instances_.count(*only) != 0) {
    present.push_back(common::FromTransportIdentifier(*only));
  }
  return present;
}

}  // namespace ara::com::internal::vsomeip::runtime
