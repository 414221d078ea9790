#pragma once

namespace ara::com::internal::vsomeip::skeleton {

/// The SOME/IP binding of one offered service instance: the base of every service adapter. Owned by the runtime alone.
class ServiceImplBase {
 public:
  virtual ~ServiceImplBase() = default;

 protected:
  ServiceImplBase() = default;
  ServiceImplBase(const ServiceImplBase&) = delete;
  ServiceImplBase& operator=(const ServiceImplBase&) = delete;
};

}  // namespace ara::com::internal::vsomeip::skeleton
