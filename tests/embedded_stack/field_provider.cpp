// Offers one field until SIGTERM: field_provider INSTANCE BYTE SIZE, where the field's value is SIZE times BYTE.
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sys/prctl.h>
#include <thread>
#include <vector>

#include <vsomeip/vsomeip.hpp>

namespace {

constexpr vsomeip::service_t kService = 0x4711;
constexpr vsomeip::event_t kField = 0x8010;

using Handler = std::function<std::vector<vsomeip::byte_t>(const std::shared_ptr<vsomeip::message>&)>;

// Answers calls of `method` with what `handler` returns.
void Answer(vsomeip::application& app, vsomeip::instance_t instance, vsomeip::method_t method, const Handler& handler) {
  app.register_message_handler(kService, instance, method, [&app, handler](const auto& request) {
    const auto response = vsomeip::runtime::get()->create_response(request);
    response->set_payload(vsomeip::runtime::get()->create_payload(handler(request)));
    app.send(response);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: field_provider INSTANCE BYTE SIZE\n";
    return 1;
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // never outlives a test that failed
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  const auto instance = static_cast<vsomeip::instance_t>(std::strtoul(argv[1], nullptr, 0));
  auto value = std::make_shared<std::vector<vsomeip::byte_t>>(
      std::strtoul(argv[3], nullptr, 0), static_cast<vsomeip::byte_t>(std::strtoul(argv[2], nullptr, 0)));
  const auto runtime = vsomeip::runtime::get();
  const auto app = runtime->create_application("field_provider");
  if (!app->init()) return 1;

  Answer(*app, instance, 0x0010, [value](const auto&) { return *value; });
  Answer(*app, instance, 0x0011, [value, &app, instance](const auto& request) {
    const auto payload = request->get_payload();
    value->assign(payload->get_data(), payload->get_data() + payload->get_length());
    app->notify(kService, instance, kField, payload);
    return std::vector<vsomeip::byte_t>();
  });
  Answer(*app, instance, 0x0012, [](const auto& request) {
    const auto payload = request->get_payload();
    const std::vector<vsomeip::byte_t> bytes(payload->get_data(), payload->get_data() + payload->get_length());
    return std::vector<vsomeip::byte_t>(bytes.rbegin(), bytes.rend());
  });
  app->offer_event(kService, instance, kField, {0x0021}, vsomeip::event_type_e::ET_FIELD);
  app->notify(kService, instance, kField, runtime->create_payload(*value));
  app->offer_service(kService, instance, 3, 7);

  std::thread thread([&app] { app->start(); });
  int signal = 0;
  sigwait(&signals, &signal);
  app->stop();
  thread.join();
  return 0;
}
