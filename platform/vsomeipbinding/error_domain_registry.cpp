#include "platform/include/error_domain_registry.h"

#include <cstdio>
#include <map>
#include <mutex>
#include <string>

#include "core_types/com_error_domain.h"
#include "core_types/core_error_domain.h"
#include "core_types/future_error_domain.h"

namespace ara::com::internal::vsomeip::common::error_domains {

namespace {

/// Stands for a domain that this process does not know, so that its codes can still be passed on and compared.
class UnknownErrorDomain final : public ara::core::ErrorDomain {
 public:
  explicit UnknownErrorDomain(IdType id) : ErrorDomain(id) {
    char text[sizeof("Unknown error domain 0x0123456789abcdef")];
    std::snprintf(text, sizeof(text), "Unknown error domain 0x%016llx", static_cast<unsigned long long>(id));
    message_ = text;
  }
  /// For all domains that are too many to have an object each.
  UnknownErrorDomain() : ErrorDomain(0), message_("Unknown error domain") {}

  const char* Name() const noexcept override { return "Unknown"; }
  const char* Message(int /*code*/) const noexcept override { return message_.c_str(); }
  [[noreturn]] void ThrowAsException(const ara::core::ErrorCode& code) const override {
    throw ara::core::Exception(code);
  }

 private:
  std::string message_;
};

const ara::core::ErrorDomain& GetUnknownDomain(std::uint64_t id) {
  // Ids come from the network, and domains live until the process ends: so their number is limited.
  constexpr std::size_t kMaxUnknownDomains = 1024;
  // Never destroyed: error codes in static objects refer to the domains.
  static auto& mutex = *new std::mutex;  // guards domains
  static auto& domains = *new std::map<std::uint64_t, UnknownErrorDomain>;
  static const auto& shared = *new UnknownErrorDomain;

  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = domains.find(id);
  if (found != domains.end()) {
    return found->second;
  }
  return domains.size() < kMaxUnknownDomains ? domains.try_emplace(id, id).first->second : shared;
}

}  // namespace

const ara::core::ErrorDomain& Registry::getDomain(const std::uint64_t& id) {
  switch (id) {
    case ara::core::CoreErrorDomain::kId:
      return ara::core::GetCoreErrorDomain();
    case ara::core::FutureErrorDomain::kId:
      return ara::core::GetFutureErrorDomain();
    case ComErrorDomain::kId:
      return GetComErrorDomain();
    default:
      return GetUnknownDomain(id);
  }
}

}  // namespace ara::com::internal::vsomeip::common::error_domains
