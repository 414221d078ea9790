#pragma once

namespace ara::com::internal::skeleton {

/// The runtime's handle on a skeleton of any interface. Owned by the application.
class ServiceBase {
 public:
  virtual ~ServiceBase() = default;

 protected:
  ServiceBase() = default;
  ServiceBase(const ServiceBase&) = delete;
  ServiceBase& operator=(const ServiceBase&) = delete;
};

}  // namespace ara::com::internal::skeleton
