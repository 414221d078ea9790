// A client's process: subscriber ARRIVALS, the descriptor of a benchmarks::SharedArrivals, or -1 where none is used.
//
//   follow INSTANCE COUNT                  as many proxies of energysystem follow the field, and count its samples
//   listen SERVICE INSTANCE EVENT MAJOR    the bare interface follows an event, and counts its messages
//   get INSTANCE, sample INSTANCE          finds the service and reads the field, through a proxy
//   bare-get INSTANCE, bare-sample INSTANCE
//   nothing
#include <cstddef>
#include <exception>
#include <iostream>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "benchmarks/application.h"
#include "benchmarks/await.h"
#include "benchmarks/bare_client.h"
#include "benchmarks/child_commands.h"
#include "benchmarks/processors.h"
#include "benchmarks/provider.h"
#include "benchmarks/shared_arrivals.h"
#include "interfaces/energysystem/energysystem_proxy.h"

namespace {

using benchmarks::Signal;
using benchmarks::SmallField;
using kro::services::energysystem::proxy::EnergySystemProxy;

/// Follows the field from its construction until its end.
class Follower {
 public:
  Follower(const EnergySystemProxy::HandleType& handle, benchmarks::SharedArrivals* arrivals) : proxy_(handle) {
    auto& field = proxy_.highVoltageBatteries;
    field.SetReceiveHandler([arrivals, &field, first = first_] {
      field.GetNewSamples([&](auto) {
        first->Raise();
        if (arrivals != nullptr) {
          arrivals->Add();
        }
      });
    });
    field.Subscribe(4);
  }
  void AwaitFirst() { first_->Await(); }

 private:
  const std::shared_ptr<Signal> first_ = std::make_shared<Signal>();
  EnergySystemProxy proxy_;
};

class Client {
 public:
  explicit Client(int arrivals) {
    if (arrivals >= 0) {
      arrivals_.emplace(arrivals);
    }
  }

  void Obey(std::istream& command) {
    std::string what;
    unsigned instance = 0;
    command >> what >> instance;
    if (what == "follow") {
      std::size_t count = 0;
      command >> count;
      Follow(instance, count);
    } else if (what == "listen") {
      const unsigned service = instance;
      unsigned event = 0;
      unsigned major = 0;
      command >> instance >> event >> major;
      Listen(static_cast<vsomeip::service_t>(service), static_cast<vsomeip::instance_t>(instance),
             static_cast<vsomeip::event_t>(event), static_cast<vsomeip::major_version_t>(major));
    } else if (what == "get") {
      benchmarks::Await(EnergySystemProxy(Found(instance)).highVoltageBatteries.Get());
    } else if (what == "sample") {
      Follower(Found(instance), nullptr).AwaitFirst();
    } else if (what == "bare-get") {
      const auto client = Bare(instance);
      client->Listen(SmallField::getter_method_id);
      client->Call(SmallField::getter_method_id, nullptr);
    } else if (what == "bare-sample") {
      Bare(instance)->Follow(SmallField::event_id);
    } else if (what != "nothing") {
      throw std::runtime_error("an unknown command: " + what);
    }
  }

 private:
  void Follow(unsigned instance, std::size_t count) {
    const auto handle = Found(instance);
    for (std::size_t i = 0; i < count; ++i) {
      followers_.emplace_back(handle, &arrivals_.value()).AwaitFirst();
    }
  }

  void Listen(vsomeip::service_t service, vsomeip::instance_t instance, vsomeip::event_t event,
              vsomeip::major_version_t major) {
    vsomeip::application& application = BareApplication();
    const auto first = std::make_shared<Signal>();
    application.register_message_handler(service, instance, event, [this, first](const auto&) {
      first->Raise();
      arrivals_->Add();
    });
    application.request_service(service, instance, major);
    benchmarks::AwaitService(application, service, instance);
    application.request_event(service, instance, event, {event}, vsomeip::event_type_e::ET_FIELD);
    application.subscribe(service, instance, event, major);
    first->Await();
  }

  static EnergySystemProxy::HandleType Found(unsigned instance) {
    const auto found = EnergySystemProxy::FindService(ara::com::InstanceIdentifier(std::to_string(instance)));
    if (found.empty()) {
      throw std::runtime_error("the provider is not found");
    }
    return found.front();
  }

  std::unique_ptr<benchmarks::BareClient> Bare(unsigned instance) {
    BareApplication();
    return std::make_unique<benchmarks::BareClient>(application_->Get(), SmallField::Service::service_id,
                                                    static_cast<vsomeip::instance_t>(instance),
                                                    SmallField::Service::major_version);
  }

  vsomeip::application& BareApplication() {
    if (!application_) {
      application_.emplace("tarn7_benchmark_subscriber");
    }
    return *application_->Get();
  }

  std::optional<benchmarks::SharedArrivals> arrivals_;
  std::optional<benchmarks::Application> application_;
  std::list<Follower> followers_;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 2) {
      throw std::runtime_error("usage: subscriber ARRIVALS");
    }
    benchmarks::ChildCommands commands;
    benchmarks::BindToProcessor(benchmarks::kServerProcessor);
    Client client(std::stoi(argv[1]));
    commands.Obey([&client](std::istream& command) { client.Obey(command); });
  } catch (const std::exception& error) {
    std::cerr << "subscriber: " << error.what() << std::endl;
    return 1;
  }
}
