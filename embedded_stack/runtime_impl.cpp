#include <cstdlib>
#include <map>
#include <mutex>

#include "embedded_stack/application_impl.h"
#include "embedded_stack/message_impl.h"
#include "vsomeip/runtime.hpp"

namespace vsomeip_v3 {

namespace embedded {
namespace {

class RuntimeImpl final : public runtime {
 public:
  std::shared_ptr<application> create_application(const std::string& name) override {
    return create_application(name, "");
  }

  std::shared_ptr<application> create_application(const std::string& name, const std::string& path) override {
    std::string chosen = name;
    const char* const from_environment = std::getenv("VSOMEIP_APPLICATION_NAME");
    if (chosen.empty() && from_environment != nullptr) chosen = from_environment;

    const std::lock_guard<std::mutex> lock(mutex_);
    const std::string wanted = chosen;
    for (unsigned suffix = 0; !applications_[chosen].expired(); ++suffix)
      chosen = wanted + "_" + std::to_string(suffix);
    auto created = std::make_shared<ApplicationImpl>(chosen, path);
    applications_[chosen] = created;
    return created;
  }

  std::shared_ptr<application> get_application(const std::string& name) const override {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = applications_.find(name);
    return found == applications_.end() ? nullptr : found->second.lock();
  }

  void remove_application(const std::string& name) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    applications_.erase(name);
  }

  std::shared_ptr<message> create_message(bool reliable) const override {
    return Create(message_type_e::MT_UNKNOWN, reliable);
  }

  std::shared_ptr<message> create_request(bool reliable) const override {
    return Create(message_type_e::MT_REQUEST, reliable);
  }

  std::shared_ptr<message> create_notification(bool reliable) const override {
    return Create(message_type_e::MT_NOTIFICATION, reliable);
  }

  std::shared_ptr<message> create_response(const std::shared_ptr<message>& request) const override {
    const auto response = Create(message_type_e::MT_RESPONSE, request->is_reliable());
    response->set_message(request->get_message());
    response->set_instance(request->get_instance());
    response->set_client(request->get_client());
    response->set_session(request->get_session());
    response->set_interface_version(request->get_interface_version());
    if (const auto own = std::dynamic_pointer_cast<MessageImpl>(request)) response->set_origin(own->origin());
    return response;
  }

  std::shared_ptr<payload> create_payload() const override { return std::make_shared<PayloadImpl>(); }

  std::shared_ptr<payload> create_payload(const byte_t* data, std::uint32_t size) const override {
    auto created = std::make_shared<PayloadImpl>();
    created->set_data(data, size);
    return created;
  }

  std::shared_ptr<payload> create_payload(const std::vector<byte_t>& data) const override {
    return std::make_shared<PayloadImpl>(data);
  }

 private:
  static std::shared_ptr<MessageImpl> Create(message_type_e type, bool reliable) {
    auto created = std::make_shared<MessageImpl>();
    created->set_message_type(type);
    created->set_reliable(reliable);
    return created;
  }

  mutable std::mutex mutex_;  // guards applications_
  std::map<std::string, std::weak_ptr<application>> applications_;
};

}  // namespace
}  // namespace embedded

std::shared_ptr<runtime> runtime::get() {
  static const std::shared_ptr<runtime> the_runtime = std::make_shared<embedded::RuntimeImpl>();
  return the_runtime;
}

}  // namespace vsomeip_v3
