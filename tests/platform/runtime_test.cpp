#include "platform/include/runtime.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ara/com/internal/skeleton/service_impl_base.h"
#include "ara/com/internal/skeleton/typed_service_impl_base.h"
#include "core_types/com_error_domain.h"
#include "core_types/com_exception.h"
#include "platform/include/service_binding.h"
#include "registry/proxy_factory.h"

namespace ara::com::internal {
namespace {

using testing::ElementsAre;

struct FakeFactory : proxy::ProxyFactory {
  using ProxyFactory::ProxyFactory;
  std::unique_ptr<proxy::ProxyBindingBase> Create() const override {
    struct FakeProxy : proxy::ProxyBindingBase {};
    return std::make_unique<FakeProxy>();
  }
};

// Writes down when it comes and goes.
struct FakeAdapter : skeleton::ServiceImplBase {
  explicit FakeAdapter(const InstanceIdentifier& offered) : ServiceImplBase({offered}) {
    log.push_back("offer " + offered.ToString());
  }
  ~FakeAdapter() override {
    if (on_stop) on_stop(GetInstanceIdentifiers().front());
    log.push_back("stop " + GetInstanceIdentifiers().front().ToString());
  }
  static inline std::vector<std::string> log;
  static inline std::function<void(const InstanceIdentifier&)> on_stop;
};
struct FakeService : skeleton::ServiceBase {};

// Carries one service with one instance.
struct FakeBinding : ServiceBinding {
  FakeBinding(std::uint16_t carried, const char* offered) : service(carried), instance(offered) {}

  void Init() override {
    FakeAdapter::log.push_back("init");
    if (++inits > 1) throw std::runtime_error("no network");
  }
  InstanceIdentifierContainer FindService(std::uint16_t id, const InstanceIdentifier&) override {
    return id == service ? InstanceIdentifierContainer{instance} : InstanceIdentifierContainer{};
  }
  std::uint64_t StartFindService(std::uint16_t id, const InstanceIdentifier&,
                                 std::function<void(InstanceIdentifierContainer)> handler) override {
    if (id != service) return 0;
    search = std::move(handler);
    if (answers_at_once) {
      search({instance});
      search({});
    }
    return 11;
  }
  void StopFindService(std::uint64_t id) override { stopped.push_back(id); }
  std::shared_ptr<proxy::ProxyFactory> GetProxyFactory(std::uint16_t id, const InstanceIdentifier& wanted) override {
    return id == service && wanted == instance ? std::make_shared<FakeFactory>(wanted) : nullptr;
  }
  std::optional<InstanceIdentifier> Canonical(const InstanceIdentifier& wanted) override {
    return wanted == "none" ? std::nullopt : std::make_optional(wanted);
  }
  std::unique_ptr<skeleton::ServiceImplBase> OfferService(skeleton::ServiceBase&, std::uint16_t id,
                                                          const InstanceIdentifier& wanted) override {
    if (on_offer) std::exchange(on_offer, nullptr)();
    if (wanted == "broken") throw IllegalStateException("no fit");
    return id == service ? std::make_unique<FakeAdapter>(wanted) : nullptr;
  }

  const std::uint16_t service;
  const InstanceIdentifier instance;
  bool answers_at_once = false;
  std::function<void()> on_offer;
  int inits = 0;
  std::function<void(InstanceIdentifierContainer)> search;
  std::vector<std::uint64_t> stopped;
};

struct FakeInterface {
  struct Service {
    static constexpr std::uint16_t ara_service_id = 1;
  };
  using Fields = ara::core::internal::TypeList<>;
  using CheckOrder = Fields;
};
struct FakeSkeleton : skeleton::TypedServiceImplBase<FakeSkeleton> {
  FakeSkeleton(InstanceIdentifierContainer instances) : TypedServiceImplBase(std::move(instances)) {}
  ~FakeSkeleton() override { StopOffer<FakeInterface>(); }
  void OfferService() { Offer<FakeInterface>(); }
};

// Bindings stay registered as long as the process runs: so all is one test.
TEST(Runtime, AsksOneBindingAfterTheOther) {
  auto owned = std::make_unique<FakeBinding>(2, "7");
  FakeBinding& second = *owned;
  auto firstOwned = std::make_unique<FakeBinding>(1, "1");
  FakeBinding& first = *firstOwned;
  Runtime::RegisterBinding(std::move(firstOwned));
  Runtime::RegisterBinding(std::move(owned));
  auto thirdOwned = std::make_unique<FakeBinding>(2, "8");  // too late for that service
  FakeBinding& third = *thirdOwned;
  Runtime::RegisterBinding(std::move(thirdOwned));

  Runtime::Init();
  EXPECT_EQ(second.inits, 1);
  EXPECT_THROW(Runtime::Init(), std::runtime_error);

  EXPECT_THAT(Runtime::FindService(2, InstanceIdentifier::Any()), ElementsAre("7"));
  EXPECT_THAT(Runtime::FindService(3, InstanceIdentifier::Any()), ElementsAre());
  EXPECT_NE(Runtime::CreateProxy(2, "7"), nullptr);
  EXPECT_EQ(Runtime::CreateProxy(2, "9"), nullptr);

  std::vector<InstanceIdentifierContainer> found;
  const auto record = [&](InstanceIdentifierContainer instances, FindServiceHandle) { found.push_back(instances); };
  const FindServiceHandle handle = Runtime::StartFindService(2, InstanceIdentifier::Any(), record);
  second.search({"7", "9"});
  Runtime::StopFindService(handle);
  Runtime::StopFindService(handle);
  second.search({});  // as a binding must not: it would be late
  EXPECT_THAT(found, ElementsAre(ElementsAre("7", "9")));
  EXPECT_THAT(second.stopped, ElementsAre(11));
  try {
    Runtime::StartFindService(3, InstanceIdentifier::Any(), record);
    ADD_FAILURE() << "nobody knows the service, but nothing was thrown";
  } catch (const ComErrorDomainException& error) {
    EXPECT_EQ(error.Error(), MakeErrorCode(ComErrc::kServiceNotAvailable));
  }

  // A handler may stop its search before the binding's answer is there.
  second.answers_at_once = true;
  Runtime::StartFindService(2, InstanceIdentifier::Any(),
                            [&](InstanceIdentifierContainer instances, FindServiceHandle search) {
                              found.push_back(instances);
                              Runtime::StopFindService(search);
                            });
  EXPECT_THAT(found, ElementsAre(ElementsAre("7", "9"), ElementsAre("7")));
  EXPECT_THAT(second.stopped, ElementsAre(11, 11));

  FakeAdapter::log.clear();
  FakeService service;
  FakeService other;
  EXPECT_THROW(Runtime::OfferService(service, 1, "none"), ComErrorDomainException);
  Runtime::OfferService(service, 1, "3");
  Runtime::OfferService(service, 1, "4");
  Runtime::OfferService(service, 1, "3");  // stands already
  Runtime::OfferService(other, 1, "5");
  EXPECT_THROW(Runtime::OfferService(service, 1, "broken"), IllegalStateException);
  EXPECT_THROW(Runtime::OfferService(service, 3, "3"), ComErrorDomainException);
  Runtime::StopOfferService(service, 1);
  Runtime::StopOfferService(service, 1);
  Runtime::OfferService(service, 1, "3");
  Runtime::StopOfferService(service, 1);
  EXPECT_THAT(FakeAdapter::log, ElementsAre("offer 3", "offer 4", "offer 5", "stop 4", "stop 3", "offer 3", "stop 3"));
  Runtime::StopOfferService(other, 1);
  FakeAdapter::log.clear();

  // While an instance is being offered: nobody else offers it, and a withdrawal takes it back.
  first.on_offer = [&] {
    EXPECT_THROW(Runtime::OfferService(service, 1, "3"), IllegalStateException);
    EXPECT_THROW(Runtime::OfferService(other, 1, "3"), IllegalStateException);
    Runtime::StopOfferService(other, 1);
  };
  Runtime::OfferService(service, 1, "3");
  EXPECT_THAT(FakeAdapter::log, ElementsAre("offer 3"));
  // And while it is being withdrawn.
  FakeAdapter::on_stop = [&](const InstanceIdentifier& instance) {
    EXPECT_THROW(Runtime::OfferService(service, 1, instance), IllegalStateException);
    EXPECT_THROW(Runtime::OfferService(other, 1, instance), IllegalStateException);
    Runtime::StopOfferService(service, 1);
  };
  first.on_offer = [&] { Runtime::StopOfferService(service, 1); };
  EXPECT_THROW(Runtime::OfferService(service, 1, "4"), IllegalStateException);
  EXPECT_THAT(FakeAdapter::log, ElementsAre("offer 3", "stop 3", "offer 4", "stop 4"));
  FakeAdapter::log.clear();

  FakeAdapter::on_stop = nullptr;
  Runtime::OfferService(other, 1, "4");
  Runtime::StopOfferService(other, 1);
  EXPECT_THAT(FakeAdapter::log, ElementsAre("offer 4", "stop 4"));
  FakeAdapter::log.clear();

  // A skeleton starts the runtime before it offers. If that fails, an offer that stands is left alone.
  first.inits = second.inits = third.inits = -10;
  FakeSkeleton skeleton({"5"});
  skeleton.OfferService();
  EXPECT_THAT(FakeAdapter::log, ElementsAre("init", "init", "init", "offer 5"));
  second.inits = 1;
  EXPECT_THROW(skeleton.OfferService(), std::runtime_error);
  EXPECT_EQ(FakeAdapter::log.back(), "init");
}

}  // namespace
}  // namespace ara::com::internal
